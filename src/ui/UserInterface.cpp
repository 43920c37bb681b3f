#include "ui/UserInterface.h"

#include "ui/HeldKeys.h"
#include "ui/Scheme.h"
#include "ui/SymbolProvider.h"

#include <QGuiApplication>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QSvgRenderer>

void qml_register_types_Brindle(); // written by Qt's build tools

namespace brindle {

void useSoftwareRenderer()
{
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

void setUpEngine(QQmlEngine &engine)
{
    qml_register_types_Brindle();
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("symbol"), new SymbolProvider); // the engine deletes it
    qGuiApp->installEventFilter(new HeldKeys(&engine));
}

QIcon applicationIcon()
{
    QSvgRenderer renderer(QStringLiteral(":/qt/qml/Brindle/icon.svg"));
    QIcon icon;
    for (const int pixels : {16, 24, 32, 48, 64}) {
        QPixmap pixmap(pixels, pixels);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        renderer.render(&painter);
        icon.addPixmap(pixmap);
    }
    return icon;
}

void setColorScheme(QQmlEngine &engine, ColorScheme scheme)
{
    const int type = qmlTypeId("Brindle", 1, 0, "Scheme");
    engine.singletonInstance<Scheme *>(type)->setIsDark(scheme == ColorScheme::dark);
}

} // namespace brindle
