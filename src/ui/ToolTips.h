#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace brindle {

/// The desktop's tool tips, which may reach beyond a small window. Their text is plain, whatever is in it.
class ToolTips : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    Q_INVOKABLE void show(const QString &text) const; ///< Beneath the pointer.
    Q_INVOKABLE void hide() const;
};

} // namespace brindle
