#pragma once

#include <string>
#include <string_view>

namespace brindle::tools {

/// \a raw without the control characters and blanks at its ends; empty where it is only what boards are shipped with in
/// place of a fact ("To Be Filled By O.E.M.", "Default string").
[[nodiscard]] std::string firmwareText(std::string_view raw);

} // namespace brindle::tools
