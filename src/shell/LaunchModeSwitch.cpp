#include "shell/LaunchModeSwitch.h"

#include "base/DefaultsKeys.h"
#include "base/Log.h"

#include <chrono>
#include <string>

namespace brindle {

using namespace std::chrono_literals;

LaunchModeSwitch::LaunchModeSwitch(const Surroundings &surroundings)
    : m_surroundings(surroundings),
      m_delayedCalls(surroundings.scheduler)
{
}

void LaunchModeSwitch::switchToWindow()
{
    store(LaunchMode::window);
    (void)m_surroundings.defaults.synchronize();
    m_delayedCalls.after(100ms, [this] {
        (void)m_surroundings.relauncher.startNewInstance({});
        terminateAfter(500ms);
    });
}

void LaunchModeSwitch::switchToMenuBar()
{
    Log::line("🔄 Switching to menubar mode...");
    store(LaunchMode::menuBar);
    const auto failure = m_surroundings.relauncher.startNewInstance(
        {std::string(kLaunchModeArgument), std::string(rawValue(LaunchMode::menuBar))});
    if (!failure)
        return terminateAfter(300ms);
    Log::line("   ❌ Mode switch failed: {}", failure->what());
    m_surroundings.defaults.set(DefaultsKeys::kLaunchMode, std::string(rawValue(LaunchMode::window)));
}

void LaunchModeSwitch::store(LaunchMode mode)
{
    m_surroundings.defaults.set(DefaultsKeys::kLaunchMode, std::string(rawValue(mode)));
    m_surroundings.defaults.set(DefaultsKeys::kIsModeSwitchRelaunch, true);
}

void LaunchModeSwitch::terminateAfter(Scheduler::Duration pause)
{
    m_delayedCalls.after(pause, [this] { m_surroundings.application.terminate(); });
}

} // namespace brindle
