#pragma once

#include "platform/Appearance.h"

namespace brindle {

/// A colour scheme that never changes, whatever the desktop's is.
class FixedAppearance final : public Appearance {
public:
    explicit FixedAppearance(ColorScheme scheme) : m_scheme(scheme) {}

    [[nodiscard]] ColorScheme colorScheme() const override { return m_scheme; }

private:
    ColorScheme m_scheme;
};

} // namespace brindle
