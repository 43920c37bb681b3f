#pragma once

#include <QObject>

namespace brindle {

enum class ColorScheme { light, dark };

/// The colour scheme that the user has chosen for the desktop. Main thread only.
class Appearance : public QObject {
    Q_OBJECT

public:
    /// Known at once and without waiting: at first perhaps a guess, which colorSchemeChanged() corrects.
    [[nodiscard]] virtual ColorScheme colorScheme() const = 0;

Q_SIGNALS:
    /// colorScheme() differs from before.
    void colorSchemeChanged();
};

} // namespace brindle
