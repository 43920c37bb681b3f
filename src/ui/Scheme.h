#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace brindle {

/// Which of its two sets of colours the theme paints with.
class Scheme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool isDark READ isDark WRITE setIsDark NOTIFY isDarkChanged)

public:
    [[nodiscard]] bool isDark() const { return m_isDark; }
    void setIsDark(bool isDark);

Q_SIGNALS:
    void isDarkChanged();

private:
    bool m_isDark = false;
};

} // namespace brindle
