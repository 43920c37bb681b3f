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
/// has no preference, doesn't answer or isn't there, that of the program's palette.
///
/// The bus is connected to on another thread. What anybody else on it says is only a reason to ask the portal again.
class PortalAppearance final : public Appearance {
    Q_OBJECT

public:
    /// How long the portal may take for an answer; the bus may have to start it first.
    static constexpr std::chrono::milliseconds kPatience{10'000};

    explicit PortalAppearance(ColorScheme paletteScheme);
    ~PortalAppearance() override;

    [[nodiscard]] ColorScheme colorScheme() const override { return m_portalScheme.value_or(m_paletteScheme); }

    void setPaletteScheme(ColorScheme scheme);

private:
    static QCoro::Task<> connectToPortal(QPointer<PortalAppearance> self);
    static QCoro::Task<> askPortal(QPointer<PortalAppearance> self);
    void use(const QDBusConnection &connection);
    void change(std::optional<ColorScheme> portalScheme, ColorScheme paletteScheme);

    Q_SLOT void settingChanged(const QDBusMessage &signal);

    ColorScheme m_paletteScheme;
    std::optional<ColorScheme> m_portalScheme;
    std::optional<QDBusConnection> m_connection;
};

} // namespace brindle
