#pragma once

#include "ui/UserInterface.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQmlProperty>
#include <QQuickItem>
#include <QQuickWindow>

#include <memory>

namespace brindle {

/// Shows a piece of QML in an off-screen window and uses it as a person does: by pointer and keys.
class QmlWindow {
public:
    static constexpr int kWidth = 500;

    /// \a qml is a document's text after its imports. Fails the test where it can't be loaded or warns.
    explicit QmlWindow(const QByteArray &qml, int height = 400, const QVariantMap &properties = {})
    {
        setUpEngine(m_engine);
        QObject::connect(&m_engine, &QQmlEngine::warnings, [](const QList<QQmlError> &errors) {
            for (const QQmlError &error : errors)
                ADD_FAILURE() << error.toString().toStdString();
        });
        QQmlComponent component(&m_engine);
        component.setData("import QtQuick\nimport Brindle\n" + qml, QUrl());
        m_root.reset(component.isReady() ? qobject_cast<QQuickItem *>(component.createWithInitialProperties(properties))
                                         : nullptr);
        if (!m_root) {
            ADD_FAILURE() << component.errorString().toStdString();
            m_root = std::make_unique<QQuickItem>();
        }
        m_window.resize(kWidth, height);
        m_root->setParentItem(m_window.contentItem());
        m_window.show();
        m_window.requestActivate();
        settle();
    }

    [[nodiscard]] QQmlEngine &engine() { return m_engine; }
    [[nodiscard]] QQuickWindow &window() { return m_window; }
    [[nodiscard]] QQuickItem &root() { return *m_root; }

    /// The visible item with the object name, anywhere below the item that is named before a "/"; fails the test and
    /// gives the root where none is.
    [[nodiscard]] QQuickItem &item(const QString &path)
    {
        QQuickItem *found = find(path);
        if (!found)
            ADD_FAILURE() << "no visible item " << path.toStdString();
        return found ? *found : *m_root;
    }
    [[nodiscard]] bool shows(const QString &path) { return find(path) != nullptr; }

    template <typename T>
    [[nodiscard]] T valueOf(const QString &objectName, const char *property)
    {
        return item(objectName).property(property).value<T>();
    }
    [[nodiscard]] std::string textOf(const QString &objectName)
    {
        return valueOf<QString>(objectName, "text").toStdString();
    }

    void click(const QString &objectName, Qt::MouseButton button = Qt::LeftButton)
    {
        const QPointF place = middleOf(objectName);
        send(QEvent::MouseButtonPress, place, button, button);
        send(QEvent::MouseButtonRelease, place, button, Qt::NoButton);
        settle();
    }
    void doubleClick(const QString &objectName)
    {
        click(objectName);
        const QPointF place = middleOf(objectName);
        send(QEvent::MouseButtonPress, place, Qt::LeftButton, Qt::LeftButton);
        send(QEvent::MouseButtonDblClick, place, Qt::LeftButton, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, place, Qt::LeftButton, Qt::NoButton);
        settle();
    }
    void hover(const QString &objectName)
    {
        send(QEvent::MouseMove, middleOf(objectName), Qt::NoButton, Qt::NoButton);
        settle();
    }
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString &text = {})
    {
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, modifiers, text);
            QCoreApplication::sendEvent(&m_window, &event);
        }
        settle();
    }
    void type(const QString &text)
    {
        for (const QChar character : text)
            press(character.toUpper().unicode(), Qt::NoModifier, character);
    }

    [[nodiscard]] QImage picture() { return m_window.grabWindow(); }

    /// Lets everything that is due happen.
    static void settle()
    {
        for (int turn = 0; turn < 3; ++turn)
            QCoreApplication::processEvents();
    }

private:
    QQuickItem *find(const QString &path)
    {
        QQuickItem *found = m_window.contentItem();
        for (const QString &name : path.split(QLatin1Char('/')))
            found = found ? find(*found, name) : nullptr;
        return found;
    }

    static QQuickItem *find(QQuickItem &parent, const QString &objectName)
    {
        if (!parent.isVisible())
            return nullptr;
        if (parent.objectName() == objectName)
            return &parent;
        for (QQuickItem *child : parent.childItems()) {
            if (QQuickItem *found = find(*child, objectName))
                return found;
        }
        return nullptr;
    }

    QPointF middleOf(const QString &objectName)
    {
        const QQuickItem &target = item(objectName);
        return target.mapToScene(QPointF(target.width() / 2, target.height() / 2));
    }

    void send(QEvent::Type type, QPointF place, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, place, m_window.mapToGlobal(place), button, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(&m_window, &event);
    }

    QQmlEngine m_engine;
    QQuickWindow m_window;
    std::unique_ptr<QQuickItem> m_root;
};

} // namespace brindle
