#pragma once

#include "platform/Appearance.h"

#include <optional>

namespace brindle {

/// The colour scheme of the program's palette: dark where its text is lighter than what is under it; or one that is
/// given, which never changes then.
class PaletteAppearance final : public Appearance {
    Q_OBJECT

public:
    explicit PaletteAppearance(std::optional<ColorScheme> given = {});
    ~PaletteAppearance() override;

    [[nodiscard]] ColorScheme colorScheme() const override { return m_scheme; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    std::optional<ColorScheme> m_given;
    ColorScheme m_scheme;
};

} // namespace brindle
