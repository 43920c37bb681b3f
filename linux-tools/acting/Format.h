#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace brindle::tools {

/// A file system that a volume can be erased to.
struct Format {
    std::string_view name;           ///< As the command line has it, in any case: "FAT32".
    std::string_view title;          ///< As messages have it: "MS-DOS (FAT32)".
    std::string_view fileSystem;     ///< libblkid's name: "vfat".
    std::string_view version;        ///< libblkid's version; may be empty.
    std::string_view gptType;        ///< The printed name of its partition type in a GPT.
    std::string_view mbrType;        ///< The same in an MBR.
    std::uint64_t smallestBytes = 0; ///< What its maker asks for; 0 where that is not known.
    bool isJournaled = false;
};

/// The format of a name as typed; null when there is none.
[[nodiscard]] const Format *findFormat(std::string_view name);

} // namespace brindle::tools
