#pragma once

#include "assembly/Platform.h"
#include "base/UnfinishedWork.h"
#include "efi/EFICopyManager.h"
#include "efi/EraseFlow.h"
#include "privileged/EFIOperations.h"
#include "privileged/KeychainHelper.h"
#include "records/ToolRunner.h"
#include "shell/NotificationManager.h"
#include "shell/ViewHeightCalculator.h"
#include "state/DiskEventMonitor.h"
#include "state/DiskManager.h"
#include "sysinfo/SystemInfoDetector.h"

namespace brindle {

/// One object of each shared class, made in a fixed order and handed downwards by reference: the wiring that the
/// application, the command line and the tests share.
class Assembly {
public:
    explicit Assembly(Platform platform);

    [[nodiscard]] Scheduler &scheduler() { return *m_platform.scheduler; }
    [[nodiscard]] UserDefaults &userDefaults() { return *m_platform.userDefaults; }
    [[nodiscard]] UnfinishedWork &unfinishedWork() { return m_unfinishedWork; }
    [[nodiscard]] ToolRunner &toolRunner() { return m_toolRunner; }
    [[nodiscard]] Dialogs &dialogs() { return *m_platform.dialogs; }
    [[nodiscard]] FileManager &fileManager() { return *m_platform.fileManager; }
    [[nodiscard]] Workspace &workspace() { return *m_platform.workspace; }
    [[nodiscard]] KeychainHelper &keychainHelper() { return m_keychainHelper; }
    [[nodiscard]] NotificationManager &notificationManager() { return m_notificationManager; }
    [[nodiscard]] EFIOperations &efiOperations() { return m_efiOperations; }
    [[nodiscard]] SystemInfoDetector &systemInfoDetector() { return m_systemInfoDetector; }
    [[nodiscard]] DiskManager &diskManager() { return m_diskManager; }
    [[nodiscard]] EFICopyManager &efiCopyManager() { return m_efiCopyManager; }
    [[nodiscard]] EraseOperationManager &eraseOperationManager() { return m_eraseOperationManager; }
    [[nodiscard]] EraseFlow &eraseFlow() { return m_eraseFlow; }
    [[nodiscard]] const ViewHeightCalculator &viewHeightCalculator() const { return m_viewHeightCalculator; }
    [[nodiscard]] DiskEventMonitor &diskEventMonitor() { return m_diskEventMonitor; }

private:
    Platform m_platform;
    UnfinishedWork m_unfinishedWork;
    ToolRunner m_toolRunner;
    KeychainHelper m_keychainHelper;
    NotificationManager m_notificationManager;
    EFIOperations m_efiOperations;
    SystemInfoDetector m_systemInfoDetector;
    DiskManager m_diskManager;
    EFICopyManager m_efiCopyManager;
    EraseOperationManager m_eraseOperationManager;
    EraseFlow m_eraseFlow;
    ViewHeightCalculator m_viewHeightCalculator;
    DiskEventMonitor m_diskEventMonitor;
};

} // namespace brindle
