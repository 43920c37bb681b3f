#pragma once

#include "base/Secret.h"

#include <QObject>
#include <QPointer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

#include <cstddef>
#include <string_view>

class QKeyEvent;

namespace brindle {

/// Keeps what is typed into a text field of QML, which holds and shows only as many place holders.
///
/// A text field copies its text about, and keeps what was deleted from it for undoing: none of that is ever
/// overwritten. What is typed goes past it into a Secret. What is pasted or comes from an input method gets there
/// through the field.
class SecretInput : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickItem *field READ field WRITE setField NOTIFY fieldChanged)

public:
    [[nodiscard]] QQuickItem *field() const { return m_field; }
    void setField(QQuickItem *field); ///< A TextInput or TextField in an echo mode that hides; null: none.

    [[nodiscard]] Secret take(); ///< What was typed; the field is empty then.

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void fieldChanged();

private:
    bool handleKey(QKeyEvent &event);
    void forward(QKeyEvent &event);
    void replace(std::size_t first, std::size_t end, std::string_view bytes);
    [[nodiscard]] std::size_t length() const;
    [[nodiscard]] std::size_t position(const char *property) const;

private Q_SLOTS:
    void followField();

private:
    QPointer<QQuickItem> m_field;
    Secret m_secret;             ///< In UTF-8; a place holder of the field stands for each character.
    bool m_isForwarding = false; ///< The field handles an event whose effect is known.
};

} // namespace brindle
