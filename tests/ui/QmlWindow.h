#pragma once

#include "ui/UserInterface.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQmlProperty>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include <memory>

namespace brindle {

/// Shows a piece of QML in an off-screen window and uses it as a person does: by pointer and keys.
class QmlWindow {
public:
    static constexpr int kWidth = 500;
    static constexpr int kHeightOn600Points = 540; ///< On a screen so high: nine tenths of it.
    static constexpr int kPressesOfAHeldKey = 8;

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

    void click(const QString &path, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseMove(&m_window, {}); // two clicks at one place are no double click
        QTest::mouseClick(&m_window, button, Qt::NoModifier, middleOf(path));
        settle();
    }
    void doubleClick(const QString &path)
    {
        QTest::mouseDClick(&m_window, Qt::LeftButton, Qt::NoModifier, middleOf(path));
        settle();
    }
    void hover(const QString &path)
    {
        QTest::mouseMove(&m_window, middleOf(path));
        settle();
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(&m_window, key, modifiers);
        settle();
    }
    /// Presses a key and holds it for a while, as a display server tells it: to the window that has the keyboard then.
    void hold(Qt::Key key)
    {
        const QString text = key == Qt::Key_Space ? QStringLiteral(" ") : QString();
        const auto tell = [&](bool isPress, bool isRepeat) {
            QTest::simulateEvent(QGuiApplication::focusWindow(), isPress, key, Qt::NoModifier, text, isRepeat);
            settle();
            if (!QGuiApplication::focusWindow())
                m_window.requestActivate(); // what a window manager does
            settle();
        };
        tell(true, false);
        for (int press = 1; press < kPressesOfAHeldKey; ++press) {
            tell(false, true);
            tell(true, true);
        }
        tell(false, false);
    }
    void type(const QString &text)
    {
        for (const QChar character : text)
            QTest::keyClick(&m_window, character.toLatin1());
        settle();
    }

    /// What has the keyboard; empty where nothing with a name has.
    [[nodiscard]] std::string focused()
    {
        const QQuickItem *item = m_window.activeFocusItem();
        return item ? item->objectName().toStdString() : std::string();
    }

    /// Presses Tab until the item has the keyboard; fails the test where it doesn't get it.
    void tabTo(const std::string &objectName)
    {
        constexpr int kMostStops = 30;
        for (int stop = 0; stop < kMostStops && focused() != objectName; ++stop)
            press(Qt::Key_Tab);
        EXPECT_EQ(focused(), objectName);
    }

    [[nodiscard]] QImage picture() { return m_window.grabWindow(); }

    /// Lets everything that is due happen.
    static void settle()
    {
        for (int turn = 0; turn < 3; ++turn) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // as an event loop does by itself
        }
    }

    /// The visible item with the object name at or below \a parent; null where none is.
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

private:
    QQuickItem *find(const QString &path)
    {
        QQuickItem *found = m_window.contentItem();
        for (const QString &name : path.split(QLatin1Char('/')))
            found = found ? find(*found, name) : nullptr;
        return found;
    }

    QPoint middleOf(const QString &path)
    {
        (void)picture(); // lays out what has changed: a new item lies above others until then
        const QQuickItem &target = item(path);
        return target.mapToScene(QPointF(target.width() / 2, target.height() / 2)).toPoint();
    }

    QQmlEngine m_engine;
    QQuickWindow m_window;
    std::unique_ptr<QQuickItem> m_root;
};

} // namespace brindle
