#pragma once

#include "platform/Appearance.h"

namespace brindle {

/// The colour scheme of the program's palette: dark where its text is lighter than what is under it.
class PaletteAppearance final : public Appearance {
    Q_OBJECT

public:
    PaletteAppearance();
    ~PaletteAppearance() override;

    [[nodiscard]] ColorScheme colorScheme() const override { return m_scheme; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    ColorScheme m_scheme;
};

} // namespace brindle
