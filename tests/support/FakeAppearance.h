#pragma once

#include "platform/Appearance.h"

namespace brindle {

/// A colour scheme that a test sets by hand.
class FakeAppearance final : public Appearance {
public:
    [[nodiscard]] ColorScheme colorScheme() const override { return m_scheme; }

    void setColorScheme(ColorScheme scheme)
    {
        m_scheme = scheme;
        Q_EMIT colorSchemeChanged();
    }

private:
    ColorScheme m_scheme = ColorScheme::light;
};

} // namespace brindle
