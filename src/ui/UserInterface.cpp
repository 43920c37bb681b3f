#include "ui/UserInterface.h"

#include "ui/Scheme.h"
#include "ui/SymbolProvider.h"

#include <QQmlEngine>
#include <QQuickWindow>

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
}

void setColorScheme(QQmlEngine &engine, ColorScheme scheme)
{
    const int type = qmlTypeId("Brindle", 1, 0, "Scheme");
    engine.singletonInstance<Scheme *>(type)->setIsDark(scheme == ColorScheme::dark);
}

} // namespace brindle
