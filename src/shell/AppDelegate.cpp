#include "shell/AppDelegate.h"

#include "base/DefaultsKeys.h"
#include "base/Log.h"
#include "base/Spawn.h"

#include <chrono>
#include <utility>

namespace brindle {

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds kPauseBeforeMainWindow = 200ms;
constexpr std::chrono::milliseconds kPauseBeforePasswordCheck = 500ms;
constexpr std::chrono::seconds kPauseBeforeUpdates = 1s;

} // namespace

AppDelegate::AppDelegate(const Surroundings &surroundings, std::vector<std::string> arguments)
    : m_surroundings(surroundings),
      m_arguments(std::move(arguments)),
      m_delayedCalls(surroundings.scheduler)
{
    // At the next turn, when the next step of the same work has begun.
    connect(&m_surroundings.unfinishedWork, &UnfinishedWork::isThereChanged, this, &AppDelegate::terminateAfterWork,
            Qt::QueuedConnection);
}

AppDelegate::~AppDelegate()
{
    m_end.cancel();
}

void AppDelegate::applicationDidFinishLaunching()
{
    if (std::exchange(m_hasInitialized, true))
        return;
    Log::line("\n🚀 Brindle Starting...");
    m_surroundings.application.followSystemAppearance();
    installAppearanceObservers();
    const LaunchMode mode = launchModeAtStart(m_arguments, m_surroundings.defaults);
    Log::line("🎯 Launch mode: {}", rawValue(mode));
    setUpFor(mode);
    spawn([self = QPointer(this)] { return startComponents(self); });
}

void AppDelegate::installAppearanceObservers()
{
    m_appearanceObserver = connect(&m_surroundings.windows, &WindowHost::screenParametersChanged, this,
                                   &AppDelegate::handleSystemAppearanceChange);
    m_schemeObserver = connect(&m_surroundings.appearance, &Appearance::colorSchemeChanged, this,
                               &AppDelegate::handleSystemAppearanceChange);
}

void AppDelegate::handleSystemAppearanceChange()
{
    for (const WindowHost::Window &window : m_surroundings.windows.windows())
        m_surroundings.windows.redraw(window.id);
}

void AppDelegate::setUpFor(LaunchMode mode)
{
    if (mode == LaunchMode::window)
        return setUpWindow();
    if (m_surroundings.statusItem.isAvailable())
        return setUpMenuBar();
    Log::line("ℹ️ No status item can be shown here, so the window opens");
    setUpWindow();
}

void AppDelegate::setUpMenuBar()
{
    m_surroundings.application.setActivationPolicy(ApplicationHost::ActivationPolicy::accessory);
    QMetaObject::invokeMethod(this, &AppDelegate::closeAllWindows, Qt::QueuedConnection);
}

void AppDelegate::setUpWindow()
{
    m_surroundings.application.setActivationPolicy(ApplicationHost::ActivationPolicy::regular);
    m_delayedCalls.after(kPauseBeforeMainWindow, [this] { m_surroundings.mainWindow.open(); });
}

void AppDelegate::closeAllWindows()
{
    for (const WindowHost::Window &window : m_surroundings.windows.windows())
        m_surroundings.windows.close(window.id);
}

QCoro::Task<> AppDelegate::startComponents(QPointer<AppDelegate> self)
{
    if (!self)
        co_return;
    auto scan = self->firstScan();
    co_await scan;
    if (!self)
        co_return;
    self->startMonitoring();
    auto pause = self->m_surroundings.scheduler.sleep(kPauseBeforePasswordCheck, self->m_end);
    co_await pause;
    if (!self)
        co_return;
    auto passwordCheck = self->m_surroundings.keychain.promptForMissingPassword();
    co_await passwordCheck;
    if (!self)
        co_return;
    auto lastPause = self->m_surroundings.scheduler.sleep(kPauseBeforeUpdates, self->m_end);
    co_await lastPause;
    if (!self)
        co_return;
    Log::line("✅ All components initialized\n");
}

QCoro::Task<> AppDelegate::firstScan()
{
    const bool isRelaunch = m_surroundings.defaults.boolForKey(DefaultsKeys::kIsModeSwitchRelaunch);
    Log::line("{}", isRelaunch ? "🔄 Mode switch - performing verification scan"
                               : "🔍 Fresh launch - performing initial disk scan");
    return m_surroundings.diskManager.startScan(false);
}

void AppDelegate::startMonitoring()
{
    Log::line("📡 Starting disk event monitoring");
    if (m_surroundings.diskEventMonitor.isMonitoring())
        return;
    m_surroundings.diskEventMonitor.startMonitoring();
    Log::line("✅ DiskEventMonitor started");
}

bool AppDelegate::applicationShouldHandleReopen(bool hasVisibleWindows)
{
    if (hasVisibleWindows || launchMode(m_surroundings.defaults) != LaunchMode::window)
        return false;
    m_surroundings.mainWindow.open();
    return true;
}

bool AppDelegate::applicationShouldTerminateAfterLastWindowClosed()
{
    return launchMode(m_surroundings.defaults) == LaunchMode::window || !m_surroundings.statusItem.isAvailable();
}

bool AppDelegate::applicationShouldTerminate()
{
    if (m_surroundings.unfinishedWork.isThere()) {
        m_surroundings.unfinishedWork.endProcessWithIt();
        return false;
    }
    if (m_surroundings.efiCopyManager.isOperationInProgress())
        m_surroundings.efiCopyManager.cancelOperation();
    return true;
}

void AppDelegate::terminateAfterWork()
{
    if (m_surroundings.unfinishedWork.endsProcess())
        m_surroundings.application.terminate();
}

void AppDelegate::applicationWillTerminate()
{
    disconnect(m_appearanceObserver);
    disconnect(m_schemeObserver);
    spawn([self = QPointer(this)] { return stopMonitoring(self); });
}

QCoro::Task<> AppDelegate::stopMonitoring(QPointer<AppDelegate> self)
{
    if (!self || !self->m_surroundings.diskEventMonitor.isMonitoring())
        co_return;
    self->m_surroundings.diskEventMonitor.stopMonitoring();
    Log::line("🛑 DiskEventMonitor stopped");
}

} // namespace brindle
