#pragma once

#include "platform/ApplicationHost.h"

#include <QPoint>

namespace brindle {

/// The program on a desktop that has no menu bar: its menu pops up in the window.
class QtApplicationHost final : public ApplicationHost {
public:
    void setActivationPolicy(ActivationPolicy) override {} ///< The desktop lists windows, not programs.
    void followSystemAppearance() override {}              ///< It does so all the time.
    void activate() override;
    void setApplicationMenu(std::vector<MenuGroup> groups) override;

    /// Shows the menu; nothing where there is none.
    void popUpMenu(QPoint place) const;

protected:
    void quit() override;

private:
    std::vector<MenuGroup> m_menu;
};

} // namespace brindle
