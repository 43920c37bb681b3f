#include "assembly/ShellAssembly.h"

#include "base/BlockOn.h"
#include "base/Error.h"
#include "base/Log.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace brindle {

namespace {

// A tool that doesn't end when it is asked to holds nobody up for longer.
constexpr std::chrono::seconds kPatience{2};

void endScan(Assembly &assembly)
{
    assembly.diskEventMonitor().stopMonitoring();
    assembly.toolRunner().endAll();
    try {
        blockOn(assembly.diskManager().stopScan(), kPatience);
    } catch (const Error &) {
        Log::line("⚠️ The scan does not end");
    }
}

} // namespace

ShellAssembly::ShellAssembly(Platform platform, const ShellHosts &hosts, std::vector<std::string> arguments)
    : m_hosts(hosts),
      m_bundle(platform.bundle),
      m_app({.bundle = m_bundle,
             .system = *platform.systemValues,
             .defaults = *platform.userDefaults,
             .dialogs = *platform.dialogs,
             .application = hosts.application}),
      m_assembly(std::move(platform)),
      m_windowDelegate(m_assembly.userDefaults(), hosts.application),
      m_mainWindow({.windows = hosts.windows,
                    .windowDelegate = m_windowDelegate,
                    .application = hosts.application,
                    .diskManager = m_assembly.diskManager(),
                    .heightCalculator = m_assembly.viewHeightCalculator()}),
      m_appDelegate(std::in_place,
                    AppDelegate::Surroundings{.defaults = m_assembly.userDefaults(),
                                              .scheduler = m_assembly.scheduler(),
                                              .application = hosts.application,
                                              .windows = hosts.windows,
                                              .statusItem = hosts.statusItem,
                                              .appearance = hosts.appearance,
                                              .diskManager = m_assembly.diskManager(),
                                              .diskEventMonitor = m_assembly.diskEventMonitor(),
                                              .keychain = m_assembly.keychainHelper(),
                                              .efiCopyManager = m_assembly.efiCopyManager(),
                                              .unfinishedWork = m_assembly.unfinishedWork(),
                                              .mainWindow = m_mainWindow},
                    std::move(arguments))
{
    m_hosts.application.setDelegate(&*m_appDelegate);
}

ShellAssembly::~ShellAssembly()
{
    for (const WindowHost::Window &window : m_hosts.windows.windows())
        m_hosts.windows.close(window.id);
    m_hosts.application.setDelegate(nullptr);
    m_appDelegate.reset();
    blockOn(m_assembly.unfinishedWork().end()); // of an event loop that something else has ended
    endScan(m_assembly);
}

void ShellAssembly::reopen()
{
    const auto windows = m_hosts.windows.windows();
    m_hosts.application.reopen(std::ranges::any_of(windows, &WindowHost::Window::isVisible));
}

} // namespace brindle
