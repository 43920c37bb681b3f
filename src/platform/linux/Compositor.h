#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

struct xcb_connection_t;

namespace brindle {

/// Whether the desktop blends windows with what is behind them: always under Wayland; under X11 as long as a
/// compositing manager owns the first screen's selection for one (Extended Window Manager Hints, _NET_WM_CM_Sn).
class Compositor final : public QObject {
    Q_OBJECT

public:
    /// \a platform is what the program's windows are on, as Qt names it: "wayland" and what begins with it, "xcb", or
    /// another, on which nothing is blended.
    explicit Compositor(std::string_view platform);

    [[nodiscard]] bool isRunning() const { return m_isRunning; }

Q_SIGNALS:
    void isRunningChanged();

private:
    void watchSelection();
    void readEvents();
    void setIsRunning(bool isRunning);

    bool m_isRunning;
    std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t *)> m_connection;
    std::uint8_t m_selectionEvent = 0;
    std::optional<QSocketNotifier> m_notifier; ///< Of the connection, and ends before that.
};

} // namespace brindle
