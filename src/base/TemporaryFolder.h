#pragma once

#include <filesystem>
#include <string_view>

namespace brindle {

/// Makes an empty folder for this user alone among the temporary files: "brindle-PURPOSE-" and digits.
///
/// The path to it stands in the text of tools when it holds mount points, and letters drawn at random would now and
/// then spell the name of a file system there. Throws Error, and std::filesystem::filesystem_error where there is no
/// folder for temporary files.
[[nodiscard]] std::filesystem::path makeTemporaryFolder(std::string_view purpose);

} // namespace brindle
