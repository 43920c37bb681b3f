#pragma once

#include <optional>

namespace brindle {

/// The height in points of the application's window whose content wants \a contentHeight, on a screen that leaves
/// \a visibleScreenHeight free; nullopt where there is no screen.
[[nodiscard]] double windowHeight(double contentHeight, std::optional<double> visibleScreenHeight);

} // namespace brindle
