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

/// Presses the item by its accessible action; false where it has none.
inline bool pressByReader(QObject &item)
{
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(&item);
    if (!accessible || !accessible->actionInterface())
        return false;
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    return true;
}

} // namespace brindle
