#pragma once

#include "assembly/Assembly.h"
#include "assembly/Platform.h"
#include "base/NotificationCenter.h"
#include "platform/Appearance.h"
#include "platform/ApplicationHost.h"
#include "platform/StatusItemHost.h"
#include "platform/WindowHost.h"
#include "shell/AppDelegate.h"
#include "shell/MainWindowOpener.h"
#include "shell/TansyApp.h"
#include "shell/WindowDelegate.h"

#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// What of the desktop the application's shell works with; all of it outlives the shell.
struct ShellHosts {
    ApplicationHost &application;
    WindowHost &windows;
    const StatusItemHost &statusItem;
    Appearance &appearance;
};

/// The application without its pictures: the assembly, and the shell that starts it and ends it.
///
/// Whoever runs the event loop calls ApplicationHost::finishLaunching() first. The shell's end comes after that of the
/// event loop: all windows are closed, because their contents may refer to the assembly, the tools of a scan are ended,
/// and unfinished work is waited for.
class ShellAssembly {
public:
    /// \a arguments are those of the process, its name first. Writes the report of the launch before anything else is
    /// made.
    ShellAssembly(Platform platform, const ShellHosts &hosts, std::vector<std::string> arguments);
    ~ShellAssembly();
    ShellAssembly(const ShellAssembly &) = delete;
    ShellAssembly &operator=(const ShellAssembly &) = delete;

    [[nodiscard]] Assembly &assembly() { return m_assembly; }
    [[nodiscard]] TansyApp &app() { return m_app; }
    [[nodiscard]] NotificationCenter &notifications() { return m_notifications; }

    /// The user has started the application a second time.
    void reopen();

private:
    ShellHosts m_hosts;
    BundleInfo m_bundle;
    TansyApp m_app;
    NotificationCenter m_notifications;
    Assembly m_assembly;
    WindowDelegate m_windowDelegate;
    MainWindowOpener m_mainWindow;
    std::optional<AppDelegate> m_appDelegate;
};

} // namespace brindle
