#pragma once

#include "platform/Appearance.h"

#include <QCoroTask>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QPointer>

#include <chrono>
#include <optional>

namespace brindle {

/// The colour scheme that org.freedesktop.portal.Settings tells, as it stands and whenever it changes; where the portal
/// has no preference, doesn't answer or isn't there, that of another appearance, such as the program's palette.
///
/// The bus is connected to on another thread. What anybody else on it says is only a reason to ask the portal again.
class PortalAppearance final : public Appearance {
    Q_OBJECT

public:
    /// How long the portal may take for an answer; the bus may have to start it first.
    static constexpr std::chrono::milliseconds kPatience{10'000};

    explicit PortalAppearance(const Appearance &fallback); ///< Outlives this one.
    ~PortalAppearance() override;

    [[nodiscard]] ColorScheme colorScheme() const override { return m_scheme; }

private:
    static QCoro::Task<> connectToPortal(QPointer<PortalAppearance> self);
    static QCoro::Task<> askPortal(QPointer<PortalAppearance> self);
    void use(const QDBusConnection &connection);
    void setPortalScheme(std::optional<ColorScheme> scheme);
    void update();

    Q_SLOT void settingChanged(const QDBusMessage &signal);

    const Appearance &m_fallback;
    std::optional<ColorScheme> m_portalScheme;
    ColorScheme m_scheme;
    std::optional<QDBusConnection> m_connection;
};

} // namespace brindle
