#pragma once

#include "platform/WindowHost.h"
#include "views/WindowContentPresenter.h"

#include <QPointingDevice>
#include <QQuickView>

#include <functional>
#include <memory>

namespace brindle {

/// The application's window: without a frame of the desktop, 500 wide and as high as it is told, whatever the user
/// does.
class MainWindow : public QQuickView {
    Q_OBJECT

public:
    MainWindow(QQmlEngine &engine, std::unique_ptr<WindowContentPresenter> content, QSize size); ///< Hidden.
    ~MainWindow() override;

    [[nodiscard]] WindowContentPresenter &content() { return *m_content; }
    void setDelegate(WindowHost::Delegate *delegate) { m_delegate = delegate; } ///< Is asked before the user closes it.
    void setFixedSize(QSize size);                                              ///< The top edge stays.
    void center();

Q_SIGNALS:
    void closedByUser();

protected:
    bool event(QEvent *event) override;

private:
    bool mouseEvent(QMouseEvent &event); ///< Takes it as one of a mouse, whatever device it came from.
    bool deliver(QMouseEvent &event, QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons buttons);

    std::unique_ptr<WindowContentPresenter> m_content;
    WindowHost::Delegate *m_delegate = nullptr;
    QPointingDevice m_mouse;
    bool m_isPressed = false; ///< One of its buttons.
};

} // namespace brindle
