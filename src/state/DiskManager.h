#pragma once

#include "base/CancellationToken.h"
#include "detectors/DiskDetector.h"
#include "detectors/EFIPartitionReader.h"
#include "platform/Scheduler.h"
#include "platform/UserDefaults.h"
#include "records/PhysicalDisk.h"
#include "records/ToolPaths.h"
#include "records/ToolRunner.h"
#include "state/DiskutilListSections.h"

#include <QCoroTask>
#include <QObject>

#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// The one observable model of the disks: what every view and command reads.
///
/// A scan turns the text of the disk tools into an ordered list of records and publishes it. A disk's lasting identity
/// is its identifier: a scan makes new records. Main thread only.
class DiskManager : public QObject {
    Q_OBJECT

public:
    /// How many disks a scan reads side by side, so that the disk tools are not flooded.
    static constexpr std::size_t kMaxConcurrentScans = 3;

    DiskManager(ToolRunner &tools, const ToolPaths &paths, const UserDefaults &defaults,
                Scheduler &scheduler); ///< All of them outlive the manager.

    /// The visible disks in display order.
    [[nodiscard]] const std::vector<PhysicalDisk> &disks() const { return m_disks; }

    /// A scan has claimed the pipeline. A scan that was cancelled on its way leaves it true, for a forced one to mend.
    [[nodiscard]] bool isLoadingDisks() const { return m_isLoadingDisks; }

    /// A scan has filled disks() once; never false again.
    [[nodiscard]] bool hasCompletedInitialScan() const { return m_hasCompletedInitialScan; }

    /// Whether the user wants to see disks of the record's type; reads the preferences on each call.
    [[nodiscard]] bool isDiskVisible(const PhysicalDisk &disk) const;

    /// Cancels a scan under way and makes a new one; returns when that is over. Unless \a force, the new scan is
    /// skipped while the pipeline is claimed. Never throws: what a failing tool would have told is left out.
    QCoro::Task<> startScan(bool force);

Q_SIGNALS:
    void disksChanged(); ///< At every publish: equality of records is narrower than what is shown.
    void isLoadingDisksChanged();
    void hasCompletedInitialScanChanged();

private:
    struct ScanBatch;

    QCoro::Task<> scanDisks(bool force, CancellationToken token);
    QCoro::Task<std::string> textOf(std::string tool, std::vector<std::string> arguments, CancellationToken token);
    QCoro::Task<std::vector<PhysicalDisk>> processDisks(std::vector<std::string> identifiers,
                                                        DiskutilListSections sections, CancellationToken token);
    QCoro::Task<> processNextDisks(ScanBatch *batch, CancellationToken token);
    QCoro::Task<std::optional<PhysicalDisk>> processDisk(std::string identifier, std::string section,
                                                         CancellationToken token);
    void publishDisks(std::vector<PhysicalDisk> disks);

    void setDisks(std::vector<PhysicalDisk> disks);
    void setIsLoadingDisks(bool isLoadingDisks);
    void setHasCompletedInitialScan(bool hasCompletedInitialScan);

    ToolRunner &m_tools;
    ToolPaths m_paths;
    const UserDefaults &m_defaults;
    Scheduler &m_scheduler;
    DiskDetector m_diskDetector;
    EFIPartitionReader m_efiPartitionReader;

    std::vector<PhysicalDisk> m_disks;
    bool m_isLoadingDisks = false;
    bool m_hasCompletedInitialScan = false;
    CancellationToken m_refreshToken;
};

/// Display order: the boot disk, then disks with OpenCore, with Clover, and all others; among alike by identifier as a
/// person counts.
[[nodiscard]] bool standsBefore(const PhysicalDisk &left, const PhysicalDisk &right);

} // namespace brindle
