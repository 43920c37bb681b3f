#pragma once

#include "state/DiskutilListSections.h"
#include "state/EraseOperations.h"
#include "state/SpaceFigures.h"

#include "base/CancellationToken.h"
#include "base/Completion.h"
#include "base/UnfinishedWork.h"
#include "detectors/BootloaderDetector.h"
#include "detectors/DiskDetector.h"
#include "detectors/FilesystemDetector.h"
#include "platform/Scheduler.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"
#include "privileged/EFIOperations.h"
#include "privileged/KeychainHelper.h"
#include "records/PhysicalDisk.h"
#include "records/ToolPaths.h"
#include "records/ToolRunner.h"
#include "sysinfo/SystemInfoDetector.h"

#include <QCoroTask>
#include <QObject>

#include <chrono>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace brindle {

/// The one observable model of the disks: what every view and command reads.
///
/// A scan turns the text of the disk tools into an ordered list of records and publishes it. A disk's lasting identity
/// is its identifier: a scan makes new records. What it holds is written to the user defaults, so that the process that
/// a switch of the launch mode starts shows it at once. An action repairs the record that it concerns without a scan.
/// Main thread only.
class DiskManager : public QObject, public EraseOperations {
    Q_OBJECT

public:
    /// How many disks a scan reads side by side, so that the disk tools are not flooded.
    static constexpr std::size_t kMaxConcurrentScans = 3;

    /// A request of the user within this time after the last scan is passed over.
    static constexpr std::chrono::milliseconds kMinimumManualRefresh{2000};

    /// What the manager works with; all of it outlives the manager.
    struct Surroundings {
        ToolRunner &tools;
        const ToolPaths &paths;
        UserDefaults &defaults;
        Scheduler &scheduler;
        SystemInfoDetector &systemInfoDetector;
        KeychainHelper &keychain;
        EFIOperations &efiOperations;
        Workspace &workspace;
        UnfinishedWork &unfinishedWork;
        /// Marked disks (AutoMountMarks.h) are mounted by themselves when a scan finds them that didn't find them
        /// before.
        bool mountsMarkedDisks = true;
    };

    /// Writes the first-run settings where they are missing, and takes back what a former process left: the opened rows
    /// always, the disks only after a switch of the launch mode. Starts no scan.
    explicit DiskManager(const Surroundings &surroundings);

    /// The visible disks in display order. Replaced as a whole by a scan.
    [[nodiscard]] const std::vector<PhysicalDisk> &disks() const { return m_disks; }

    /// For each disk by its identifier, whether any of its EFI partitions is mounted. Disks that went without being
    /// ejected stay in it.
    [[nodiscard]] const std::map<std::string, bool> &efiStates() const { return m_efiStates; }

    /// The identifiers of the disks whose rows are open.
    [[nodiscard]] const std::set<std::string> &expandedDisks() const { return m_expandedDisks; }

    /// A scan has claimed the pipeline. A scan that was cancelled on its way leaves it true, for a forced one to mend.
    [[nodiscard]] bool isLoadingDisks() const { return m_isLoadingDisks; }

    /// A scan or what a former process left has filled disks() once; never false again.
    [[nodiscard]] bool hasCompletedInitialScan() const { return m_hasCompletedInitialScan; }

    /// A marked disk is being mounted. Of several that are mounted side by side the first one to end puts it down.
    [[nodiscard]] bool isAutoMounting() const { return m_isAutoMounting; }

    /// What the user is told meanwhile, of the last one that began; empty otherwise.
    [[nodiscard]] const std::string &autoMountStatusMessage() const { return m_autoMountStatusMessage; }

    /// Whether the user wants to see disks of the record's type; reads the preferences on each call.
    [[nodiscard]] bool isDiskVisible(const PhysicalDisk &disk) const;

    /// The end of the last scan that published, of this process or a former one.
    [[nodiscard]] std::optional<Scheduler::Date> lastRefreshTime() const;

    /// A refresh that the user asks for: unless \a force, passed over shortly after the last scan.
    QCoro::Task<> refresh(bool force);

    /// Cancels a scan under way and makes a new one; returns when that is over. Unless \a force, the new scan is
    /// skipped while the pipeline is claimed. Never throws: what a failing tool would have told is left out.
    QCoro::Task<> startScan(bool force);

    /// Cancels the scan under way and returns once its tools have ended, for a program that is about to end; called
    /// once at most.
    QCoro::Task<> stopScan();

    /// Returns once no disk is being mounted by itself, for a program that is about to end; called once at most.
    QCoro::Task<> autoMountsEnded();

    /// Takes what the system information knows about the boot for the next disks that are read.
    void syncBootloaderInfo();

    /// EFIOperations::mount(), then the record of the partition is read anew and kept; its config.plist is opened where
    /// the user wants that. Throws what the mount throws, and nothing has changed then.
    QCoro::Task<> mountEFI(std::string identifier, std::string diskName);

    /// Reads the EFI partition anew and repairs its disk's record in its place; the list is not sorted again. Nothing
    /// where the tool knows no such partition or the list holds none. Never throws.
    QCoro::Task<> updateEFIPartitionState(std::string identifier);

    /// Opens the config.plist of OpenCore, or else that of Clover, on the mounted EFI partition; where there is none
    /// the log alone tells. Never throws.
    QCoro::Task<> openConfigPlist(std::string identifier);

    /// Lets the whole disk go and takes it off the list before any scan, then refreshes. Gives what the tool printed.
    /// Throws the tool's Error, and nothing has changed then. Unfinished work until the disk is off the list.
    [[nodiscard]] QCoro::Task<std::string> ejectDisk(std::string identifier);

    QCoro::Task<> requireVolumeOn(std::string diskIdentifier, std::string volume) override;
    QCoro::Task<> formatEFIPartition(std::string identifier, std::string name) override;
    QCoro::Task<> eraseVolume(std::string identifier, std::string name, std::string format) override;
    QCoro::Task<> eraseDisk(std::string identifier, std::string name, std::string format) override;

    /// Opens the disk's row, or closes it.
    void toggleExpanded(const std::string &identifier);

    /// Writes the disks and the opened rows to the user defaults.
    void persistState();

Q_SIGNALS:
    void changed();      ///< An action has changed the model: once more beside the signals of the fields.
    void disksChanged(); ///< At every publish: equality of records is narrower than what is shown.
    void isLoadingDisksChanged();
    void efiStatesChanged(); ///< At every publish, whether it differs or not.
    void expandedDisksChanged();
    void hasCompletedInitialScanChanged();
    void isAutoMountingChanged();
    void autoMountStatusMessageChanged();

private:
    struct ScanBatch;

    /// What a scan's disks are compared with.
    struct BootloaderInfo {
        std::optional<std::string> bootDisk;
        std::optional<std::string> bootloaderDisk;
        std::optional<std::string> openCore;
        std::optional<std::string> clover;

        bool operator==(const BootloaderInfo &) const = default;
    };

    void restorePersistedState();
    void restorePersistedDisks();

    QCoro::Task<> scanDisks(bool force, CancellationToken token);
    QCoro::Task<> detectSystemInfo();
    QCoro::Task<DiskUsage> readUsage(CancellationToken token);
    QCoro::Task<DiskutilListSections> readSections(CancellationToken token);
    QCoro::Task<std::vector<PhysicalDisk>> processDisks(std::vector<std::string> identifiers, DiskUsage usage,
                                                        DiskutilListSections sections, CancellationToken token);
    QCoro::Task<> processNextDisks(ScanBatch *batch, CancellationToken token);
    QCoro::Task<std::optional<PhysicalDisk>> processDisk(std::string identifier, const DiskUsage *usage,
                                                         std::string section, CancellationToken token);
    [[nodiscard]] QCoro::Task<BootloaderFlags> bootloaderFlags(const PhysicalDisk &disk); ///< Keeps no reference.
    void endWithoutDisks();
    void publishDisks(std::vector<PhysicalDisk> disks);
    void closeRowsOfMissingDisks();

    void autoMountNewDisks(const std::set<std::string> &knownIdentifiers);
    QCoro::Task<> autoMount(std::string identifier, std::string diskName);
    void setAutoMountingLater(bool isAutoMounting, std::string statusMessage);

    QCoro::Task<> replaceEFIPartition(EFIPartition partition);
    void setEFIState(const std::string &identifier, bool isMounted);
    QCoro::Task<std::string> letDiskGo(std::string identifier);
    void forgetDisk(const std::string &identifier);
    QCoro::Task<> erase(std::vector<std::string> arguments);

    void setDisks(std::vector<PhysicalDisk> disks);
    void updateEFIStates();
    void setIsLoadingDisks(bool isLoadingDisks);
    void setExpandedDisks(std::set<std::string> expandedDisks);
    void setHasCompletedInitialScan(bool hasCompletedInitialScan);

    ToolRunner &m_tools;
    ToolPaths m_paths;
    UserDefaults &m_defaults;
    Scheduler &m_scheduler;
    DiskDetector m_diskDetector;
    FilesystemDetector m_filesystemDetector;
    BootloaderDetector m_bootloaderDetector;
    SystemInfoDetector &m_systemInfoDetector;
    KeychainHelper &m_keychain;
    EFIOperations &m_efiOperations;
    Workspace &m_workspace;
    UnfinishedWork &m_unfinishedWork;
    bool m_mountsMarkedDisks;
    std::optional<BootloaderInfo> m_cachedBootloaderInfo;

    std::vector<PhysicalDisk> m_disks;
    bool m_isLoadingDisks = false;
    std::map<std::string, bool> m_efiStates;
    std::set<std::string> m_expandedDisks;
    bool m_hasCompletedInitialScan = false;
    bool m_isAutoMounting = false;
    std::string m_autoMountStatusMessage;
    CancellationToken m_refreshToken;
    std::size_t m_scansUnderWay = 0;
    Completion<bool> m_scansEnded; ///< Of all that are under way; a new one once none was.
    std::size_t m_autoMountsUnderWay = 0;
    Completion<bool> m_autoMountsEnd; ///< The same of these.
};

/// Display order: the boot disk, then disks with OpenCore, with Clover, and all others; among alike by identifier as a
/// person counts.
[[nodiscard]] bool standsBefore(const PhysicalDisk &left, const PhysicalDisk &right);

/// The first of the disk's EFI partitions that is mounted; null where none is.
[[nodiscard]] const EFIPartition *mountedEFIPartition(const PhysicalDisk &disk);

/// The configuration of the boot loader below \a mountPoint: OpenCore's, or else Clover's; nullopt where neither is.
[[nodiscard]] QCoro::Task<std::optional<std::string>> configPlistAt(std::string mountPoint);

} // namespace brindle
