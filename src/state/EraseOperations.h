#pragma once

#include <QCoroTask>

#include <string>

namespace brindle {

/// What destroys data. Each returns when the work is done and the list of disks is fresh, and throws an Error where it
/// was refused or failed; nothing is repaired then. Names are those of the volumes to come, formats those of the disk
/// tool.
class EraseOperations {
public:
    virtual ~EraseOperations() = default;

    /// Formats an EFI partition as FAT32.
    virtual QCoro::Task<> formatEFIPartition(std::string identifier, std::string name) = 0;

    /// Throws an Error where a volume that is told by its mount point or its name is not of this disk. Names are
    /// anybody's, also the identifiers of other partitions, and pass to the next disk that is plugged in. A volume that
    /// isn't known is left to what acts on it.
    virtual QCoro::Task<> requireVolumeOn(std::string diskIdentifier, std::string volume) = 0;

    /// Formats one volume, which may also be told by its mount point or by its name.
    virtual QCoro::Task<> eraseVolume(std::string identifier, std::string name, std::string format) = 0;

    /// Makes a new partition map with an EFI partition and one volume.
    virtual QCoro::Task<> eraseDisk(std::string identifier, std::string name, std::string format) = 0;
};

} // namespace brindle
