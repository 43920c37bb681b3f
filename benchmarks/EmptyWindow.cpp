// A Qt Quick window that shows nothing: what the application's window is compared with.

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>

#include <memory>

int main(int argc, char **argv)
{
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QGuiApplication application(argc, argv);
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData("import QtQuick; Window { width: 500; height: 400; visible: true }", QUrl());
    const std::unique_ptr<QObject> window(component.create());
    return QGuiApplication::exec();
}
