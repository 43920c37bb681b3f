#pragma once

#include "records/EFIPartition.h"
#include "records/SMARTStatus.h"
#include "records/SerializablePhysicalDisk.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// One whole disk with its EFI partitions: never a partition, never a synthesized container.
///
/// A snapshot: what links it to the disk, and to later snapshots of it, is the identifier alone.
struct PhysicalDisk {
    enum class DiskType { physicalInternal, physicalExternal, removable, diskImage };

    std::string identifier; ///< Device name such as "disk0": the lasting identity of the disk.
    std::optional<std::string> mediaUUID;
    std::string name;
    std::string size; ///< The tool's own text, such as "500.3 GB"; never parsed.
    std::string fileSystem;
    std::optional<std::string> mountPoint; ///< Of the whole disk, not of a partition.
    std::optional<std::string> volumeName; ///< Label of up to three volumes of the disk.
    bool isRemovable = false;              ///< The type is removable.
    bool isWritable = true;
    std::vector<EFIPartition> efiPartitions; ///< In the order of the partition map.
    DiskType diskType = DiskType::physicalInternal;
    bool isBootDisk = false;                     ///< Holds the running system.
    std::optional<std::int64_t> totalSpaceBytes; ///< Absent where the tool gave none.
    std::optional<std::int64_t> usedSpaceBytes;  ///< Likewise.
    bool hasMacOS = false;
    bool hasOpenCore = false;
    bool hasClover = false;
    bool hasWindows = false;
    bool hasLinux = false;
    bool hasExFAT = false;
    bool isDiskImage = false; ///< The type is diskImage.
    SMARTStatus smartStatus = SMARTStatus::unknown;
    bool isSolidState = false;
    bool trimSupported = false;
    std::string busProtocol; ///< The tool's own text, such as "USB"; may be empty.

    /// A disk type or a health of unexpected text becomes physicalInternal or unknown; absent fields get their start
    /// values.
    [[nodiscard]] static PhysicalDisk fromSerialized(const SerializablePhysicalDisk &serialized);
    [[nodiscard]] SerializablePhysicalDisk toSerializable() const;

    /// Name of the symbol that stands for the disk: filled where a system or a boot loader was found on it.
    [[nodiscard]] std::string_view diskIcon() const;

    /// Narrower than the fields, so that what watches a list of disks redraws only for what a scan finds out about
    /// them. Left out: mediaUUID, fileSystem, mountPoint, volumeName, isRemovable, isWritable, diskType, isDiskImage,
    /// isSolidState, trimSupported and busProtocol.
    bool operator==(const PhysicalDisk &other) const;
};

/// The disks in their persisted form, as encodeDisks() writes it.
[[nodiscard]] std::string encodeDisks(const std::vector<PhysicalDisk> &disks, JSONLayout layout = JSONLayout::Compact);

} // namespace brindle

/// Narrower still than equality: names, sizes and systems seldom tell disks apart whose identifiers are the same.
template <>
struct std::hash<brindle::PhysicalDisk> {
    std::size_t operator()(const brindle::PhysicalDisk &disk) const noexcept;
};
