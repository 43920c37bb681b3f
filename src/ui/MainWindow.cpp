#include "ui/MainWindow.h"

#include <QApplication>
#include <QMouseEvent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <utility>

namespace brindle {

namespace {

constexpr int kButtons = 3;

/// Hands to the open menu what is meant for it: the keys, and the press beside it, which closes it. Some desktops give
/// both to the window beneath. Whether \a event was such a one.
bool isForOpenMenu(QEvent &event)
{
    QWidget *menu = QApplication::activePopupWidget();
    if (!menu)
        return false;
    switch (event.type()) {
    case QEvent::ShortcutOverride: // or the window's own shortcuts would come first
        event.accept();
        return true;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        QCoreApplication::sendEvent(menu, &event);
        return true;
    case QEvent::MouseButtonPress:
        menu->close();
        return true;
    default:
        return false;
    }
}

/// Null where \a event isn't one of a mouse that counts as a touch pad's finger. Under Wayland every mouse does, and of
/// a finger the handlers take every button for theirs.
QMouseEvent *mouseTakenForFinger(QEvent &event)
{
    auto *mouse = dynamic_cast<QMouseEvent *>(&event);
    return mouse && mouse->pointingDevice()->type() == QInputDevice::DeviceType::TouchPad ? mouse : nullptr;
}

} // namespace

MainWindow::MainWindow(QQmlEngine &engine, std::unique_ptr<WindowContentPresenter> content, QSize size)
    : QQuickView(&engine, nullptr),
      m_content(std::move(content)),
      m_mouse(QStringLiteral("mouse"), 0, QInputDevice::DeviceType::Mouse, QPointingDevice::PointerType::Generic,
              QInputDevice::Capability::Position | QInputDevice::Capability::Hover | QInputDevice::Capability::Scroll,
              1, kButtons)
{
    setObjectName(QStringLiteral("mainWindow"));
    setTitle(QStringLiteral("Brindle"));
    setFlags(Qt::Window | Qt::FramelessWindowHint);
    setColor(Qt::transparent);
    setResizeMode(SizeRootObjectToView);
    setInitialProperties({{QStringLiteral("presenter"), QVariant::fromValue(m_content.get())}});
    setSource(QUrl(QStringLiteral("qrc:/qt/qml/Brindle/WindowContentView.qml")));
    setFixedSize(size);
}

MainWindow::~MainWindow()
{
    setSource({}); // the view before what it shows
}

void MainWindow::setFixedSize(QSize size)
{
    QPoint topLeft = position();
    if (screen() && size.height() > height()) { // what a dialog ends with are its buttons
        const QRect available = screen()->availableGeometry();
        topLeft.setY(std::min(topLeft.y(), std::max(available.top(), available.bottom() + 1 - size.height())));
    }
    setMinimumSize(size);
    setMaximumSize(size);
    resize(size);
    if (isVisible())
        setPosition(topLeft);
}

void MainWindow::center()
{
    if (const QScreen *on = screen())
        setPosition(on->availableGeometry().center() - QPoint(width() / 2, height() / 2));
}

bool MainWindow::event(QEvent *event)
{
    if (isForOpenMenu(*event))
        return true;
    if (QMouseEvent *mouse = mouseTakenForFinger(*event))
        return mouseEvent(*mouse);
    if (event->type() != QEvent::Close)
        return QQuickView::event(event);
    if ((m_delegate && !m_delegate->windowShouldClose()) || !m_content->mayClose()) {
        event->ignore();
        return true;
    }
    const bool handled = QQuickView::event(event);
    Q_EMIT closedByUser();
    return handled;
}

bool MainWindow::mouseEvent(QMouseEvent &event)
{
    const bool isRelease = event.type() == QEvent::MouseButtonRelease;
    const bool wasPressedBefore = (event.buttons() & ~Qt::MouseButtons(event.button())) != Qt::NoButton;
    // The desktop that has moved the window has kept the release for itself, and the next click would be lost.
    const bool isSecondClick = event.type() == QEvent::MouseButtonDblClick; // comes right behind its press
    if (m_isPressed && !isRelease && !isSecondClick && !wasPressedBefore)
        deliver(event, QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton);
    m_isPressed = event.buttons() != Qt::NoButton;
    return deliver(event, event.type(), event.button(), event.buttons());
}

bool MainWindow::deliver(QMouseEvent &event, QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons buttons)
{
    QMouseEvent own(type, event.position(), event.scenePosition(), event.globalPosition(), button, buttons,
                    event.modifiers(), &m_mouse);
    own.setTimestamp(event.timestamp());
    const bool handled = QQuickView::event(&own);
    event.setAccepted(own.isAccepted());
    return handled;
}

} // namespace brindle
