#include "assembly/Assembly.h"

#include <utility>

namespace brindle {

Assembly::Assembly(Platform platform)
    : m_platform(std::move(platform)),
      m_toolRunner(*m_platform.childProcesses, *m_platform.scheduler),
      m_keychainHelper({.secretStore = *m_platform.secretStore,
                        .dialogs = *m_platform.dialogs,
                        .childProcesses = *m_platform.childProcesses,
                        .scheduler = *m_platform.scheduler,
                        .userDefaults = *m_platform.userDefaults,
                        .toolPaths = m_platform.toolPaths,
                        .unfinishedWork = m_unfinishedWork,
                        .service = m_platform.bundle.identifier.value_or(KeychainHelper::kService),
                        .isRoot = m_platform.isRoot,
                        .isSecretStoreTemporary = m_platform.isSecretStoreTemporary}),
      m_notificationManager(*m_platform.userNotifications, *m_platform.userDefaults, *m_platform.childProcesses,
                            m_platform.toolPaths, *m_platform.workspace),
      m_efiOperations(m_toolRunner, m_platform.toolPaths, m_keychainHelper, m_notificationManager,
                      *m_platform.workspace, *m_platform.userDefaults),
      m_systemInfoDetector(m_toolRunner, m_platform.toolPaths),
      m_diskManager({.tools = m_toolRunner,
                     .paths = m_platform.toolPaths,
                     .defaults = *m_platform.userDefaults,
                     .scheduler = *m_platform.scheduler,
                     .systemInfoDetector = m_systemInfoDetector,
                     .keychain = m_keychainHelper,
                     .efiOperations = m_efiOperations,
                     .workspace = *m_platform.workspace,
                     .unfinishedWork = m_unfinishedWork,
                     .mountsMarkedDisks = m_platform.mountsMarkedDisks}),
      m_efiCopyManager(*m_platform.fileManager, *m_platform.dialogs, *m_platform.scheduler, m_unfinishedWork,
                       [this](EFIPartition partition) { return m_efiOperations.isMountedThere(std::move(partition)); }),
      m_eraseFlow(m_eraseOperationManager, m_diskManager),
      m_viewHeightCalculator(*m_platform.userDefaults),
      m_diskEventMonitor(*m_platform.diskEvents, *m_platform.scheduler,
                         [this](bool force) { return m_diskManager.startScan(force); })
{
}

} // namespace brindle
