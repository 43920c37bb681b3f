#pragma once

#include <filesystem>
#include <string_view>

namespace brindle {

/// The function \a name of the module at \a path, which is loaded here and stays. Null where it can't be had, after a
/// line of the log that names what the module is for, \a purpose.
[[nodiscard]] void *moduleFunction(const std::filesystem::path &path, const char *name, std::string_view purpose);

} // namespace brindle
