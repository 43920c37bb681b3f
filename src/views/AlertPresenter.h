#pragma once

#include "platform/Dialogs.h"

#include <QObject>
#include <QString>
#include <QStringList>

namespace brindle {

/// An alert, with or without a field, for a view. It is answered once.
class AlertPresenter : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString messageText READ messageText CONSTANT)
    Q_PROPERTY(QString informativeText READ informativeText CONSTANT) // may have several lines
    Q_PROPERTY(QString symbol READ symbol CONSTANT)
    Q_PROPERTY(QString symbolColor READ symbolColor CONSTANT) // a Color's value
    Q_PROPERTY(QStringList buttons READ buttons CONSTANT)     // the first is the default one
    Q_PROPERTY(Field field READ field CONSTANT)
    Q_PROPERTY(QString placeholder READ placeholder CONSTANT)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged) // of a field that may be seen

public:
    enum class Field { None, Text, Secret };
    Q_ENUM(Field)

    explicit AlertPresenter(Alert alert, QObject *parent = nullptr);
    explicit AlertPresenter(TextPrompt prompt, QObject *parent = nullptr);
    explicit AlertPresenter(SecurePrompt prompt, QObject *parent = nullptr); ///< What is typed is not kept here.

    [[nodiscard]] QString messageText() const;
    [[nodiscard]] QString informativeText() const;
    [[nodiscard]] QString symbol() const;
    [[nodiscard]] QString symbolColor() const;
    [[nodiscard]] QStringList buttons() const;
    [[nodiscard]] Field field() const { return m_field; }
    [[nodiscard]] QString placeholder() const;
    [[nodiscard]] QString text() const { return m_text; }
    void setText(const QString &text);

    Q_INVOKABLE void press(int button);
    Q_INVOKABLE void close(); ///< In another way than by a button: as the last one.

Q_SIGNALS:
    void textChanged();
    void answered(int button);

private:
    AlertPresenter(Alert alert, Field field, std::string placeholder, QObject *parent);

    Alert m_alert;
    Field m_field;
    std::string m_placeholder;
    QString m_text;
    bool m_isAnswered = false;
};

} // namespace brindle
