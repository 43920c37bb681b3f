#pragma once

#include <QAccessible>
#include <QObject>

#include <ostream>
#include <string>

namespace brindle {

/// What a screen reader says of an item.
struct ReadAloud {
    QAccessible::Role role = QAccessible::NoRole;
    std::string name;

    bool operator==(const ReadAloud &) const = default;
    friend std::ostream &operator<<(std::ostream &out, const ReadAloud &aloud)
    {
        return out << '"' << aloud.name << "\" of role " << aloud.role;
    }
};

[[nodiscard]] inline ReadAloud readAloud(QObject &item)
{
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(&item);
    return accessible ? ReadAloud{accessible->role(), accessible->text(QAccessible::Name).toStdString()} : ReadAloud{};
}

[[nodiscard]] inline std::string descriptionReadAloud(QObject &item)
{
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(&item);
    return accessible ? accessible->text(QAccessible::Description).toStdString() : "";
}

/// Performs an accessible action of the item as a screen reader does; false where the item doesn't offer it.
inline bool performByReader(QObject &item, const QString &action)
{
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(&item);
    QAccessibleActionInterface *actions = accessible ? accessible->actionInterface() : nullptr;
    if (!actions || !actions->actionNames().contains(action))
        return false;
    actions->doAction(action);
    return true;
}

inline bool pressByReader(QObject &item)
{
    return performByReader(item, QAccessibleActionInterface::pressAction());
}

/// Replaces the text of a field as a screen reader does.
inline void writeByReader(QObject &field, const QString &text)
{
    QAccessible::queryAccessibleInterface(&field)->setText(QAccessible::Value, text);
}

} // namespace brindle
