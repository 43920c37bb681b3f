#include "platform/linux/PortalAppearance.h"

#include "platform/linux/SessionBus.h"

#include <QDBusVariant>
#include <QVariant>

#include <utility>

namespace brindle {

using namespace Qt::StringLiterals;

namespace {

constexpr auto kService = "org.freedesktop.portal.Desktop"_L1;
constexpr auto kPath = "/org/freedesktop/portal/desktop"_L1;
constexpr auto kInterface = "org.freedesktop.portal.Settings"_L1;
constexpr auto kNamespace = "org.freedesktop.appearance"_L1;
constexpr auto kKey = "color-scheme"_L1;

// Its values; 0 is no preference.
constexpr uint kPrefersDark = 1;
constexpr uint kPrefersLight = 2;

/// The value in as many variants as it is wrapped in: Read wraps it in two.
QVariant unwrapped(QVariant value)
{
    while (value.metaType() == QMetaType::fromType<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

std::optional<ColorScheme> schemeIn(const QDBusMessage &reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() != 1)
        return std::nullopt;
    const QVariant value = unwrapped(reply.arguments().at(0));
    if (value.metaType() != QMetaType::fromType<uint>())
        return std::nullopt;
    switch (value.toUInt()) {
    case kPrefersDark:
        return ColorScheme::dark;
    case kPrefersLight:
        return ColorScheme::light;
    default:
        return std::nullopt;
    }
}

QDBusMessage readCall()
{
    QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kInterface, u"Read"_s);
    call << QString(kNamespace) << QString(kKey);
    return call;
}

} // namespace

PortalAppearance::PortalAppearance(const Appearance &fallback) : m_fallback(fallback), m_scheme(fallback.colorScheme())
{
    connect(&fallback, &Appearance::colorSchemeChanged, this, &PortalAppearance::update);
    connectToPortal(this);
}

PortalAppearance::~PortalAppearance()
{
    if (m_connection)
        QDBusConnection::disconnectFromBus(m_connection->name());
}

QCoro::Task<> PortalAppearance::connectToPortal(QPointer<PortalAppearance> self)
{
    auto connecting = connectToSessionBus();
    const QDBusConnection connection = co_await connecting;
    if (self && connection.isConnected())
        self->use(connection);
    else
        QDBusConnection::disconnectFromBus(connection.name());
}

void PortalAppearance::use(const QDBusConnection &connection)
{
    m_connection = connection;
    // From any sender: Qt would ask the bus who owns the portal's name, and wait for the answer.
    m_connection->connect({}, kPath, kInterface, u"SettingChanged"_s, this, SLOT(settingChanged(QDBusMessage)));
    askPortal(this);
}

QCoro::Task<> PortalAppearance::askPortal(QPointer<PortalAppearance> self)
{
    auto answer = replyTo(readCall(), *self->m_connection, kPatience);
    const QDBusMessage reply = co_await answer;
    if (self)
        self->setPortalScheme(schemeIn(reply));
}

void PortalAppearance::settingChanged(const QDBusMessage &signal)
{
    const QVariantList arguments = signal.arguments();
    if (signal.signature() == u"ssv"_s && arguments.at(0).toString() == kNamespace &&
        arguments.at(1).toString() == kKey)
        askPortal(this);
}

void PortalAppearance::setPortalScheme(std::optional<ColorScheme> scheme)
{
    m_portalScheme = scheme;
    update();
}

void PortalAppearance::update()
{
    const ColorScheme scheme = m_portalScheme.value_or(m_fallback.colorScheme());
    if (std::exchange(m_scheme, scheme) != scheme)
        Q_EMIT colorSchemeChanged();
}

} // namespace brindle
