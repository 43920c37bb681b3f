#pragma once

#include <string>

namespace brindle {

/// Removes a file, a link, or a folder with all that is beneath it. Never follows a link below \a path's own folder.
/// Throws an Error that names what could not be removed; what went before it is gone then. Blocks.
void removeTree(const std::string &path);

} // namespace brindle
