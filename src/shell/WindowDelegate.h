#pragma once

#include "platform/ApplicationHost.h"
#include "platform/UserDefaults.h"
#include "platform/WindowHost.h"

namespace brindle {

/// The one delegate of all windows: in the window mode the application ends with its window.
class WindowDelegate final : public WindowHost::Delegate {
public:
    WindowDelegate(const UserDefaults &defaults, ApplicationHost &application); ///< Both outlive the delegate.

    /// True always; in the window mode the application is told to end before.
    [[nodiscard]] bool windowShouldClose() override;

private:
    const UserDefaults &m_defaults;
    ApplicationHost &m_application;
};

} // namespace brindle
