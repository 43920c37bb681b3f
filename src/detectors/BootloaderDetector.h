#pragma once

#include <QCoroTask>

#include <map>
#include <optional>
#include <string>

namespace brindle {

/// Which boot loaders a disk holds. Both may be there; where nothing was found neither is.
struct BootloaderFlags {
    bool hasOpenCore = false;
    bool hasClover = false;

    bool operator==(const BootloaderFlags &) const = default;
};

/// What the files of one mounted EFI partition told.
struct ScanEntry {
    std::string mountPoint;
    bool hasOpenCore = false;
    bool hasClover = false;
};

/// Tells which boot loaders a disk holds: by the files of its mounted EFI partition, or else by what the running
/// system told of the one that started it. Mounts nothing and never fails. Main thread only.
class BootloaderDetector {
public:
    /// \a isBootDisk: the disk holds the running system. \a isBootloaderDisk: the boot loader came from the disk.
    /// \a efiMounted: one of its EFI partitions is mounted; \a efiMountPoint: where the first of these is.
    [[nodiscard]] QCoro::Task<BootloaderFlags> detectBootloaders(std::string identifier, bool isBootDisk,
                                                                 bool isBootloaderDisk, bool efiMounted,
                                                                 std::optional<std::string> efiMountPoint);

    /// Which boot loaders have a folder with a loader or a configuration below \a mountPoint, which is put in front of
    /// the paths as it is. A mount point that has gone holds neither. The files are looked at on another thread.
    [[nodiscard]] static QCoro::Task<BootloaderFlags> scanEFIFiles(std::string mountPoint);

    // What the running system told, as its owner last copied it.
    std::optional<std::string> bootDiskIdentifier;       ///< Of the disk with the running system.
    std::optional<std::string> bootloaderDiskIdentifier; ///< Of the disk that the boot loader came from.
    std::optional<std::string> openCoreVersion;          ///< Present where OpenCore started the system.
    std::optional<std::string> cloverVersion;            ///< Present where Clover did.

    /// Empties scanCache, before each scan of the disks. What is still being read is not kept any more.
    void forgetScans();

    /// By the whole disk's identifier.
    std::map<std::string, ScanEntry> scanCache;

private:
    [[nodiscard]] std::optional<BootloaderFlags> knownScan(const std::string &identifier,
                                                           const std::string &mountPoint) const;
    QCoro::Task<BootloaderFlags> readAndKeep(std::string identifier, std::string mountPoint);
    [[nodiscard]] BootloaderFlags flagsOfRunningSystem() const;

    int m_round = 0; ///< How often scanCache was emptied.
};

} // namespace brindle
