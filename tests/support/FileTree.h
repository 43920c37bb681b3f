#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace brindle {

/// Writes a file, and the folders above it where they are missing.
void writeFile(const std::filesystem::path &file, std::string_view bytes);

/// What lies beneath \a folder, by relative path: the bytes of a file (their number and hash where they are
/// many), "/" for a folder, "-> TEXT" for a link. Empty where there is no such folder.
[[nodiscard]] std::map<std::string, std::string> treeOf(const std::filesystem::path &folder);

/// An EFI folder of 12 entries in three levels.
void writeSampleEFI(const std::filesystem::path &folder);

} // namespace brindle
