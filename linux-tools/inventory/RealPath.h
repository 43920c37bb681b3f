#pragma once

#include <string>

namespace brindle::tools {

/// The path that a name on the command line leads to, without links, blank steps and slashes at its end; empty where it
/// leads nowhere. A word without a slash is the name of something and no path, but for "." and "..".
[[nodiscard]] std::string realPath(const std::string &name);

} // namespace brindle::tools
