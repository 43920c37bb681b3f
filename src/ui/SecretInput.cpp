#include "ui/SecretInput.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QScopedValueRollback>
#include <QString>

#include <algorithm>
#include <utility>

namespace brindle {

namespace {

constexpr QChar kPlaceHolder(0xE000); // of the private use area: nobody types it

constexpr bool beginsCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; // all but the continuation bytes of UTF-8
}

/// Where the character with the number \a index begins; the end for one that isn't there.
std::size_t offsetOf(std::string_view bytes, std::size_t index)
{
    std::size_t offset = 0;
    for (; offset < bytes.size(); ++offset) {
        if (beginsCharacter(bytes[offset]) && index-- == 0)
            break;
    }
    return offset;
}

std::size_t countOf(std::string_view bytes)
{
    return static_cast<std::size_t>(std::ranges::count_if(bytes, beginsCharacter));
}

QString placeHolders(std::size_t count)
{
    return {static_cast<qsizetype>(count), kPlaceHolder};
}

bool isTyping(const QKeyEvent &event)
{
    const QString text = event.text();
    return !text.isEmpty() && text[0].isPrint() && !(event.modifiers() & (Qt::ControlModifier | Qt::MetaModifier));
}

} // namespace

void SecretInput::setField(QQuickItem *field)
{
    if (m_field == field)
        return;
    if (m_field) {
        m_field->removeEventFilter(this);
        m_field->disconnect(this);
    }
    m_field = field;
    if (m_field) {
        m_field->installEventFilter(this);
        connect(m_field, SIGNAL(textChanged()), this, SLOT(followField())); // the item's class is private to Qt
    }
    Q_EMIT fieldChanged();
}

Secret SecretInput::take()
{
    Secret taken = std::exchange(m_secret, Secret());
    if (m_field) {
        const QScopedValueRollback forwarding(m_isForwarding, true);
        m_field->setProperty("text", QString());
    }
    return taken;
}

bool SecretInput::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_field || event->type() != QEvent::KeyPress || m_isForwarding)
        return false;
    return handleKey(static_cast<QKeyEvent &>(*event));
}

bool SecretInput::handleKey(QKeyEvent &event)
{
    if (event.matches(QKeySequence::Undo) || event.matches(QKeySequence::Redo))
        return true;
    if (!isTyping(event))
        return false;
    const std::size_t first = position("selectionStart");
    const QByteArray typed = event.text().toUtf8();
    const std::string_view bytes(typed.data(), static_cast<std::size_t>(typed.size()));
    replace(first, position("selectionEnd"), bytes);
    QKeyEvent masked(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, placeHolders(countOf(bytes)));
    forward(masked);
    event.setAccepted(true);
    return true;
}

void SecretInput::forward(QKeyEvent &event)
{
    const QScopedValueRollback forwarding(m_isForwarding, true);
    QCoreApplication::sendEvent(m_field, &event);
}

/// After the field has changed by itself: characters were deleted in front of or behind the cursor, or others have come
/// in at one place.
void SecretInput::followField()
{
    if (m_isForwarding)
        return;
    const QString text = m_field->property("text").toString();
    const auto size = static_cast<std::size_t>(text.size());
    const std::size_t before = length();
    const auto isForeign = [](QChar character) { return character != kPlaceHolder; };
    const auto begin = std::ranges::find_if(text, isForeign);
    if (begin == text.end()) {
        const std::size_t first = position("cursorPosition");
        replace(first, first + (before - std::min(before, size)), {});
        return;
    }
    const auto end = std::find_if(text.rbegin(), text.rend(), isForeign).base();
    const auto first = static_cast<std::size_t>(begin - text.begin());
    const auto behind = static_cast<std::size_t>(text.end() - end);
    const QByteArray foreign = QStringView(begin, end).toUtf8();
    const std::string_view bytes(foreign.data(), static_cast<std::size_t>(foreign.size()));
    replace(first, before - behind, bytes);

    const QScopedValueRollback forwarding(m_isForwarding, true);
    m_field->setProperty("text", placeHolders(length()));
    m_field->setProperty("cursorPosition", static_cast<int>(first + countOf(bytes)));
}

/// Puts \a bytes in place of the characters from \a first up to \a end.
void SecretInput::replace(std::size_t first, std::size_t end, std::string_view bytes)
{
    const std::string_view old = m_secret.view();
    Secret changed(old.substr(0, offsetOf(old, first)));
    changed.append(bytes);
    changed.append(old.substr(offsetOf(old, end)));
    m_secret = std::move(changed);
}

std::size_t SecretInput::length() const
{
    return countOf(m_secret.view());
}

std::size_t SecretInput::position(const char *property) const
{
    return static_cast<std::size_t>(m_field->property(property).toInt());
}

} // namespace brindle
