#include "ui/MainWindow.h"

#include <QQmlEngine>
#include <QQuickItem>
#include <QScreen>

#include <utility>

namespace brindle {

MainWindow::MainWindow(QQmlEngine &engine, std::unique_ptr<WindowContentPresenter> content, QSize size)
    : QQuickView(&engine, nullptr),
      m_content(std::move(content))
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
    const QPoint topLeft = position();
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

} // namespace brindle
