#include "shell/WindowDelegate.h"

#include "shell/LaunchMode.h"

namespace brindle {

WindowDelegate::WindowDelegate(const UserDefaults &defaults, ApplicationHost &application)
    : m_defaults(defaults),
      m_application(application)
{
}

bool WindowDelegate::windowShouldClose()
{
    if (launchMode(m_defaults) == LaunchMode::window)
        m_application.terminate();
    return true;
}

} // namespace brindle
