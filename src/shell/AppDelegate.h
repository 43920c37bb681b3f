#pragma once

#include "base/CancellationToken.h"
#include "base/UnfinishedWork.h"
#include "efi/EFICopyManager.h"
#include "platform/Appearance.h"
#include "platform/ApplicationHost.h"
#include "platform/DelayedCalls.h"
#include "platform/Scheduler.h"
#include "platform/StatusItemHost.h"
#include "platform/UserDefaults.h"
#include "platform/WindowHost.h"
#include "privileged/KeychainHelper.h"
#include "shell/LaunchMode.h"
#include "shell/MainWindowOpener.h"
#include "state/DiskEventMonitor.h"
#include "state/DiskManager.h"

#include <QCoroTask>
#include <QMetaObject>
#include <QObject>
#include <QPointer>

#include <string>
#include <vector>

namespace brindle {

/// Sets the process up for its launch mode, brings its components up one after the other, and takes them down.
///
/// What decides after the start goes by the user defaults and not by a mode that was given as an argument.
class AppDelegate final : public QObject, public ApplicationDelegate {
    Q_OBJECT

public:
    /// What the delegate works with; all of it outlives the delegate.
    struct Surroundings {
        const UserDefaults &defaults;
        Scheduler &scheduler;
        ApplicationHost &application;
        WindowHost &windows;
        const StatusItemHost &statusItem;
        Appearance &appearance;
        DiskManager &diskManager;
        DiskEventMonitor &diskEventMonitor;
        KeychainHelper &keychain;
        EFICopyManager &efiCopyManager;
        UnfinishedWork &unfinishedWork;
        MainWindowOpener &mainWindow;
    };

    AppDelegate(const Surroundings &surroundings, std::vector<std::string> arguments);
    ~AppDelegate() override; ///< Components that are not up by then stay down.

    /// Nothing the second time. Returns before the components are up.
    void applicationDidFinishLaunching() override;

    /// Opens the window in the window mode, where none is visible; false in every other case.
    bool applicationShouldHandleReopen(bool hasVisibleWindows) override;

    /// In the window mode, and where no status item could keep the process in sight.
    [[nodiscard]] bool applicationShouldTerminateAfterLastWindowClosed() override;

    /// False while work is unfinished, whose end then ends the application. A copy that has changed nothing yet is
    /// cancelled.
    [[nodiscard]] bool applicationShouldTerminate() override;

    void applicationWillTerminate() override;

private:
    void installAppearanceObservers();
    void handleSystemAppearanceChange();
    void setUpFor(LaunchMode mode);
    void setUpMenuBar();
    void setUpWindow();
    void closeAllWindows();

    static QCoro::Task<> startComponents(QPointer<AppDelegate> self);
    static QCoro::Task<> stopMonitoring(QPointer<AppDelegate> self);
    [[nodiscard]] QCoro::Task<> firstScan();
    void startMonitoring();
    void terminateAfterWork();

    Surroundings m_surroundings;
    std::vector<std::string> m_arguments;
    bool m_hasInitialized = false;
    QMetaObject::Connection m_appearanceObserver; ///< Of the screens.
    QMetaObject::Connection m_schemeObserver;
    DelayedCalls m_delayedCalls;
    CancellationToken m_end = CancellationToken::cancellable(); ///< Of the pauses.
};

} // namespace brindle
