#pragma once

#include "platform/WindowHost.h"
#include "ui/MainWindow.h"

#include <functional>
#include <map>
#include <memory>

namespace brindle {

/// The windows of the program on a desktop.
class QtWindowHost final : public WindowHost {
    Q_OBJECT

public:
    using MakeContent = std::function<std::unique_ptr<WindowContentPresenter>()>;

    /// \a engine outlives the host.
    explicit QtWindowHost(QQmlEngine &engine);
    ~QtWindowHost() override;

    /// Before the first window; called for each. What was prepared goes.
    void setMakeContent(MakeContent makeContent);

    /// Makes the next window ahead, so that it comes up at once when it is asked for. Nobody is told of it until then.
    void prepare();

    void setColorScheme(ColorScheme scheme); ///< Of all windows, and of those to come.

    /// Null where there is none of that name.
    [[nodiscard]] MainWindow *find(WindowID window) const;

    [[nodiscard]] std::vector<Window> windows() const override;
    [[nodiscard]] std::optional<double> visibleScreenHeight() const override;
    WindowID create(double width, double height) override;
    void finishStyling(WindowID window, Delegate &delegate) override;
    void close(WindowID window) override;
    void center(WindowID window) override;
    void makeKeyAndOrderFront(WindowID window) override;
    void redraw(WindowID window) override;
    void setHeight(WindowID window, double height, bool isAnimated) override;

Q_SIGNALS:
    void lastWindowClosed(); ///< By the user.
    void quitRequested();    ///< By the user, in any of the windows.

private:
    [[nodiscard]] std::unique_ptr<MainWindow> makeWindow();
    void closedByUser(WindowID window);
    void observeScreen(QScreen *screen);

    QQmlEngine &m_engine;
    MakeContent m_makeContent;
    ColorScheme m_colorScheme = ColorScheme::light;
    std::map<WindowID, std::unique_ptr<MainWindow>> m_windows; ///< The oldest first.
    std::unique_ptr<MainWindow> m_prepared;                    ///< The next one; null where it isn't made yet.
    unsigned m_lastID = 0;
};

} // namespace brindle
