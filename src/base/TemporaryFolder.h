#pragma once

#include <filesystem>
#include <string_view>

namespace brindle {

/// Makes an empty folder for this user alone: "brindle-PURPOSE-" and digits, in $TMPDIR or, without one, in /tmp.
///
/// The path to it stands in the text of tools when it holds mount points, and letters drawn at random would now and
/// then spell the name of a file system there. Throws an Error that names the folder where it can't be made.
[[nodiscard]] std::filesystem::path makeTemporaryFolder(std::string_view purpose);

} // namespace brindle
