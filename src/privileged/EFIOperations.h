#pragma once

#include "privileged/KeychainHelper.h"
#include "privileged/MountNotifier.h"

#include "detectors/EFIPartitionReader.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"

#include <QCoroTask>

#include <string>
#include <vector>

namespace brindle {

/// Mounts, unmounts and renames EFI partitions, which are named by their device identifiers such as "disk2s1".
///
/// Operations may overlap; each throws the Error of the tool or of KeychainHelper::runPrivileged() unchanged, and
/// leaves nothing behind. The disk's name serves the notification alone. Main thread only.
class EFIOperations : public EFIPartitionReader {
public:
    /// All arguments outlive the object.
    EFIOperations(ToolRunner &tools, const ToolPaths &paths, KeychainHelper &keychain, MountNotifier &notifier,
                  Workspace &workspace, const UserDefaults &defaults);

    /// Mounts the partition unless it is mounted, tells the user, and shows it unless the user has switched that off.
    QCoro::Task<> mount(std::string identifier, std::string diskName);

    /// Unmounts the partition unless it is unmounted or unknown, by force where it is refused, and tells the user.
    QCoro::Task<> unmount(std::string identifier, std::string diskName);

    QCoro::Task<> rename(std::string identifier, std::string newName);

    /// Shows the folder that the partition is mounted at; nothing where it isn't mounted or the folder is not there.
    QCoro::Task<> openMountPoint(std::string identifier);

private:
    [[nodiscard]] QCoro::Task<std::string> info(std::string identifier) const;
    [[nodiscard]] QCoro::Task<std::string> runPrivileged(std::vector<std::string> arguments);
    QCoro::Task<> mountUnlessMounted(std::string identifier);
    QCoro::Task<> unmountUnlessUnmounted(std::string identifier);

    std::string m_diskutilPath;
    KeychainHelper &m_keychain;
    MountNotifier &m_notifier;
    Workspace &m_workspace;
    const UserDefaults &m_defaults;
};

} // namespace brindle
