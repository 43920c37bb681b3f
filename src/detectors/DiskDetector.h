#pragma once

#include "detectors/Diskutil.h"

#include "base/CancellationToken.h"
#include "platform/UserDefaults.h"
#include "records/PhysicalDisk.h"

#include <QCoroTask>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// Turns the text of `diskutil` into whole disks.
///
/// A section is the part of `diskutil list` that belongs to one disk; it may be empty. A failing tool gives an empty
/// answer, never an error: a scan goes on without the disk. The static functions read texts and run nothing. Main
/// thread only.
class DiskDetector {
public:
    /// A disk, and the text of `diskutil info` that it was read from.
    struct DiskRecord {
        std::optional<PhysicalDisk> disk; ///< Absent where the tool failed or told of no whole disk.
        std::string info;                 ///< Empty where the tool failed.
    };

    /// What `diskutil info` alone tells of a whole disk.
    struct DiskFacts {
        std::string name;
        std::string size = "Unknown";
        std::string fileSystem = "Unknown";
        std::optional<std::string> mountPoint;
        bool isRemovable = false;
        bool isWritable = true;
        SMARTStatus smartStatus = SMARTStatus::unknown;
        bool isSolidState = false;
        bool trimSupported = false;
        std::string protocol;
        std::string location;
        std::optional<std::string> mediaUUID; ///< Present and empty where the tool prints the label without a value.
    };

    /// The place of a volume's name in the label of its disk.
    enum class VolumeRank { APFS = 1, HFS, Windows };

    struct VolumeEntry {
        std::string name;
        VolumeRank rank;

        bool operator==(const VolumeEntry &) const = default;
    };

    /// What a section tells of a disk's volumes: the named ones, and where more names are to be had.
    struct SectionVolumes {
        std::vector<VolumeEntry> entries;
        std::vector<std::string> containers;        ///< Whole disks, such as "disk1", that APFS made of partitions.
        std::vector<std::string> unnamedPartitions; ///< Windows partitions whose name the list doesn't tell.
    };

    DiskDetector(ToolRunner &tools, ToolPaths paths, const UserDefaults &defaults); ///< Both outlive the detector.

    /// Identifiers ("disk0") of all whole disks to show, in the tool's order: the physical ones and then, only where
    /// the user asked for them, disk images with a partition scheme.
    [[nodiscard]] QCoro::Task<std::vector<std::string>> listPhysicalDisks(CancellationToken token = {});

    [[nodiscard]] QCoro::Task<DiskRecord> diskRecord(std::string identifier, std::string section,
                                                     CancellationToken token = {});

    /// The disk of which \a info is the text of `diskutil info`; runs the tool again for volume names. Nullopt where
    /// the text is not of a whole disk.
    [[nodiscard]] QCoro::Task<std::optional<PhysicalDisk>> parseDiskInfo(std::string info, std::string identifier,
                                                                         std::string section,
                                                                         CancellationToken token = {});

    /// Up to three names of the disk's volumes: APFS, HFS and Windows, in this order.
    [[nodiscard]] QCoro::Task<std::optional<std::string>> volumeLabel(std::string identifier, std::string section,
                                                                      CancellationToken token = {});

    [[nodiscard]] QCoro::Task<std::vector<std::string>> apfsVolumeNames(std::string container,
                                                                        CancellationToken token = {});

    [[nodiscard]] QCoro::Task<std::optional<std::string>> volumeNameFromInfo(std::string partition,
                                                                             CancellationToken token = {});

    /// The whole disks of all header lines of `diskutil list`, in order; one that stands twice is given twice.
    [[nodiscard]] static std::vector<std::string> parseDiskIdentifiers(std::string_view list);

    /// Whether a text of `diskutil` is of a disk image that carries a real partition scheme.
    [[nodiscard]] static bool isExposedDiskImage(std::string_view text);

    /// The facts that \a info alone tells. Nullopt where it is not of a whole disk.
    [[nodiscard]] static std::optional<DiskFacts> readDiskInfo(std::string_view info, std::string_view identifier);

    [[nodiscard]] static PhysicalDisk::DiskType diskType(const DiskFacts &facts, bool isDiskImage);

    [[nodiscard]] static SectionVolumes readSectionVolumes(std::string_view section, std::string_view disk);

    /// The name column of a trimmed line of a partition map: what stands between the keyword of the type column, given
    /// in lower case, and the size.
    [[nodiscard]] static std::optional<std::string> partitionNameInLine(std::string_view line,
                                                                        std::string_view lowerCasedKeyword,
                                                                        std::string_view disk);

    [[nodiscard]] static std::optional<std::string> partitionIdentifierInLine(std::string_view line,
                                                                              std::string_view disk);

    /// The volumes that `diskutil list` names for a container, but for those that the system keeps for itself.
    [[nodiscard]] static std::vector<std::string> readAPFSVolumeNames(std::string_view list,
                                                                      std::string_view container);

    /// The volume name that `diskutil info` tells of a partition, where it is a name that somebody gave.
    [[nodiscard]] static std::optional<std::string> readVolumeName(std::string_view info);

    /// Folds the system and data halves of one system volume ("System" and "System - Data") into one name. Names
    /// without a plain twin stand last, in the order of their first appearance.
    [[nodiscard]] static std::vector<std::string> mergeDataVolumes(const std::vector<std::string> &names);

    /// The label of the volumes \a entries, which may stand in any order.
    [[nodiscard]] static std::optional<std::string> labelOf(std::vector<VolumeEntry> entries);

private:
    /// Those of \a candidates, in order, that are disk images to show and not \a physicalDisks.
    QCoro::Task<std::vector<std::string>> exposedDiskImages(std::vector<std::string> candidates,
                                                            std::vector<std::string> physicalDisks,
                                                            CancellationToken token);
    QCoro::Task<std::optional<std::string>> firstNameFromInfo(std::vector<std::string> partitions,
                                                              CancellationToken token);
    QCoro::Task<bool> isExposedDiskImageNow(std::string identifier, CancellationToken token);

    Diskutil m_diskutil;
    const UserDefaults &m_defaults;
};

} // namespace brindle
