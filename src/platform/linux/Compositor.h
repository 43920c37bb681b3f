#pragma once

namespace brindle {

/// Whether the desktop blends windows with what is behind them, as it stands now: always under Wayland; under X11 where
/// a compositing manager owns the first screen's selection for one (Extended Window Manager Hints, _NET_WM_CM_Sn).
[[nodiscard]] bool isCompositorRunning();

} // namespace brindle
