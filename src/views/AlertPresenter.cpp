#include "views/AlertPresenter.h"

#include "views/Shown.h"

#include "base/VisibleText.h"
#include "shell/Color.h"

#include <utility>

namespace brindle {

AlertPresenter::AlertPresenter(Alert alert, QObject *parent) : AlertPresenter(std::move(alert), Field::None, "", parent)
{
}

AlertPresenter::AlertPresenter(TextPrompt prompt, QObject *parent)
    : AlertPresenter(std::move(prompt.alert), Field::Text, std::move(prompt.placeholder), parent)
{
    m_text = QString::fromStdString(prompt.text);
}

AlertPresenter::AlertPresenter(SecurePrompt prompt, QObject *parent)
    : AlertPresenter(std::move(prompt.alert), Field::Secret, std::move(prompt.placeholder), parent)
{
}

AlertPresenter::AlertPresenter(Alert alert, Field field, std::string placeholder, QObject *parent)
    : QObject(parent),
      m_alert(std::move(alert)),
      m_field(field),
      m_placeholder(std::move(placeholder))
{
}

QString AlertPresenter::messageText() const
{
    return shown(m_alert.messageText);
}

QString AlertPresenter::informativeText() const
{
    return QString::fromStdString(visibleLines(m_alert.informativeText));
}

QString AlertPresenter::symbol() const
{
    return m_alert.style == AlertStyle::warning ? QStringLiteral("exclamationmark.triangle.fill")
                                                : QStringLiteral("info.circle");
}

QString AlertPresenter::symbolColor() const
{
    return shown((m_alert.style == AlertStyle::warning ? Colors::kOrange : Colors::kBlue).value);
}

QStringList AlertPresenter::buttons() const
{
    QStringList buttons;
    for (const std::string &button : m_alert.buttons)
        buttons << shown(button);
    return buttons;
}

QString AlertPresenter::placeholder() const
{
    return shown(m_placeholder);
}

void AlertPresenter::setText(const QString &text)
{
    if (std::exchange(m_text, text) != text)
        Q_EMIT textChanged();
}

void AlertPresenter::press(int button)
{
    if (!std::exchange(m_isAnswered, true))
        Q_EMIT answered(button);
}

void AlertPresenter::close()
{
    press(static_cast<int>(m_alert.buttons.size()) - 1);
}

} // namespace brindle
