#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace brindle::tools {

/// What a name has to keep to.
struct NameRule {
    enum class Unit { bytes, utf16 };

    std::size_t limit = 255; ///< In units.
    Unit unit = Unit::bytes;
    std::string_view forbidden; ///< ASCII characters that it must not hold, besides control characters.
    bool isUpperCase = false;   ///< ASCII letters are written in upper case.
    bool isAscii = false;       ///< Nothing beyond ASCII.
};

/// \a name as \a rule allows it: without blanks at its ends, with "_" for each character that is forbidden or no
/// UTF-8, cut before the character that doesn't fit.
[[nodiscard]] std::string fitted(std::string_view name, const NameRule &rule);

/// \a name as a volume of \a fileSystem (libblkid's name) can bear it. The limits are those of the file systems' own
/// descriptions: FAT 11 bytes of its code page in upper case, exFAT 11 and NTFS 32 UTF-16 units, HFS+ 255, ext 16
/// bytes.
[[nodiscard]] std::string fittedLabel(std::string_view name, std::string_view fileSystem);

/// The folder that a volume of this label is mounted on: what would lead elsewhere or can't be printed becomes "_".
[[nodiscard]] std::string folderNameOf(std::string_view label);

} // namespace brindle::tools
