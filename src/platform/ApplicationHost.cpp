#include "platform/ApplicationHost.h"

#include <utility>

namespace brindle {

void ApplicationHost::finishLaunching()
{
    if (m_delegate)
        m_delegate->applicationDidFinishLaunching();
}

void ApplicationHost::reopen(bool hasVisibleWindows)
{
    activate();
    if (m_delegate)
        m_delegate->applicationShouldHandleReopen(hasVisibleWindows);
}

void ApplicationHost::lastWindowClosed()
{
    if (m_delegate && m_delegate->applicationShouldTerminateAfterLastWindowClosed())
        terminate();
}

void ApplicationHost::terminate()
{
    if (std::exchange(m_isTerminating, true))
        return;
    if (m_delegate)
        m_delegate->applicationWillTerminate();
    quit();
}

} // namespace brindle
