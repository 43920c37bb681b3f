#include "platform/ApplicationHost.h"

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
    if (m_isTerminating || (m_delegate && !m_delegate->applicationShouldTerminate()))
        return;
    m_isTerminating = true;
    if (m_delegate)
        m_delegate->applicationWillTerminate();
    quit();
}

} // namespace brindle
