#pragma once

#include <string>
#include <string_view>

namespace brindle::tools {

/// The text of `nvram NAME`: the name as it was asked for, a tab and the value. Bytes of the value that are no
/// printable ASCII stand as "%xx".
[[nodiscard]] std::string nvramText(std::string_view name, std::string_view value);

/// What `nvram` says on standard error when there is no such variable.
[[nodiscard]] std::string nvramMissingText(std::string_view name);

} // namespace brindle::tools
