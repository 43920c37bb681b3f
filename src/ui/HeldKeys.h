#pragma once

#include <QObject>

namespace brindle {

/// Lets Space, Return and Enter press once, however long they are held: a dialog closes at the press, and what repeats
/// must not go on at the row beneath. Works in all windows of Qt Quick once the application has it as event filter.
class HeldKeys : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace brindle
