#pragma once

#include "ui/Stillness.h"

#include <QAccessible>
#include <QQuickWindow>

#include <fmt/format.h>

#include <string>
#include <vector>

namespace brindle {

/// What a screen reader can't do with a window: a line for each control that misses something.
class AccessibleControls {
public:
    explicit AccessibleControls(const QQuickWindow &window)
    {
        forEachVisible(*window.contentItem(), [this](const QQuickItem &item) {
            if (item.isEnabled() && isControl(item))
                look(item);
        });
    }

    /// The object names of all controls that can be used now, in the order in which they are drawn.
    [[nodiscard]] const std::vector<std::string> &names() const { return m_names; }

    /// Each as "name: what it misses".
    [[nodiscard]] const std::vector<std::string> &misses() const { return m_misses; }

private:
    /// Whether a person can act on it: by keys, by pointer, or because it says so.
    static bool isControl(const QQuickItem &item)
    {
        return item.activeFocusOnTab() || item.inherits("QQuickAbstractButton") ||
               item.property("focusPolicy").toInt() != Qt::NoFocus || !actionOf(roleOf(item)).isEmpty();
    }

    /// The action by which a control of the role is used; empty for the role of what is no control.
    static QString actionOf(QAccessible::Role role)
    {
        switch (role) {
        case QAccessible::CheckBox:
            return QAccessibleActionInterface::toggleAction();
        case QAccessible::Button:
        case QAccessible::RadioButton:
        case QAccessible::ListItem:
        case QAccessible::ComboBox:
            return QAccessibleActionInterface::pressAction();
        case QAccessible::EditableText: // which is typed into
        case QAccessible::Grouping:     // whose members are pressed
            return QAccessibleActionInterface::setFocusAction();
        default:
            return {};
        }
    }

    /// It lives as long as the item.
    static QAccessibleInterface *accessibleOf(const QQuickItem &item)
    {
        return QAccessible::queryAccessibleInterface(const_cast<QQuickItem *>(&item));
    }
    static QAccessible::Role roleOf(const QQuickItem &item)
    {
        QAccessibleInterface *accessible = accessibleOf(item);
        return accessible ? accessible->role() : QAccessible::NoRole;
    }

    void look(const QQuickItem &item)
    {
        const std::string name =
            item.objectName().isEmpty() ? item.metaObject()->className() : item.objectName().toStdString();
        m_names.push_back(name);
        const QString action = actionOf(roleOf(item));
        if (action.isEmpty()) {
            m_misses.push_back(name + ": a role");
            return;
        }
        QAccessibleInterface &accessible = *accessibleOf(item);
        if (accessible.text(QAccessible::Name).trimmed().isEmpty())
            m_misses.push_back(name + ": a name");
        if (!accessible.actionInterface() || !accessible.actionInterface()->actionNames().contains(action))
            m_misses.push_back(fmt::format("{}: the action {}", name, action.toStdString()));
    }

    std::vector<std::string> m_names;
    std::vector<std::string> m_misses;
};

} // namespace brindle
