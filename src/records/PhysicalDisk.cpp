#include "records/PhysicalDisk.h"
#include "records/Hasher.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace brindle {

namespace {

using DiskType = PhysicalDisk::DiskType;

struct DiskTypeRow {
    std::string_view persistedName;
    std::string_view outlineSymbol;
    std::string_view filledSymbol;
};

// In the order of the cases.
constexpr auto kDiskTypes = std::to_array<DiskTypeRow>({
    {"physicalInternal", "internaldrive", "internaldrive.fill"},
    {"physicalExternal", "externaldrive", "externaldrive.fill"},
    {"removable", "externaldrive.connected.to.line.below", "externaldrive.connected.to.line.below.fill"},
    {"diskImage", "opticaldisc", "opticaldisc.fill"},
});

const DiskTypeRow &rowOf(DiskType type)
{
    return kDiskTypes[static_cast<std::size_t>(type)];
}

DiskType diskTypeOf(std::string_view persistedName)
{
    const auto found = std::ranges::find(kDiskTypes, persistedName, &DiskTypeRow::persistedName);
    return found == kDiskTypes.end() ? DiskType::physicalInternal : static_cast<DiskType>(found - kDiskTypes.begin());
}

} // namespace

PhysicalDisk PhysicalDisk::fromSerialized(const SerializablePhysicalDisk &serialized)
{
    PhysicalDisk disk{
        .identifier = serialized.identifier,
        .mediaUUID = serialized.mediaUUID,
        .name = serialized.name,
        .size = serialized.size,
        .fileSystem = serialized.fileSystem,
        .mountPoint = serialized.mountPoint,
        .volumeName = serialized.volumeName,
        .isRemovable = serialized.isRemovable,
        .isWritable = serialized.isWritable,
        .diskType = diskTypeOf(serialized.diskType),
        .isBootDisk = serialized.isBootDisk,
        .totalSpaceBytes = serialized.totalSpaceBytes,
        .usedSpaceBytes = serialized.usedSpaceBytes,
        .hasMacOS = serialized.hasMacOS,
        .hasOpenCore = serialized.hasOpenCore,
        .hasClover = serialized.hasClover,
        .hasWindows = serialized.hasWindows,
        .hasLinux = serialized.hasLinux,
        .hasExFAT = serialized.hasExFAT,
        .isDiskImage = serialized.isDiskImage,
        .smartStatus = fromRawValue<SMARTStatus>(serialized.smartStatus.value_or("")).value_or(SMARTStatus::unknown),
        .isSolidState = serialized.isSolidState.value_or(false),
        .trimSupported = serialized.trimSupported.value_or(false),
        .busProtocol = serialized.busProtocol.value_or(""),
    };
    std::ranges::transform(serialized.efiPartitions, std::back_inserter(disk.efiPartitions),
                           EFIPartition::fromSerialized);
    return disk;
}

SerializablePhysicalDisk PhysicalDisk::toSerializable() const
{
    SerializablePhysicalDisk serialized{
        .identifier = identifier,
        .mediaUUID = mediaUUID,
        .name = name,
        .size = size,
        .fileSystem = fileSystem,
        .mountPoint = mountPoint,
        .volumeName = volumeName,
        .isRemovable = isRemovable,
        .isWritable = isWritable,
        .diskType = std::string(rowOf(diskType).persistedName),
        .isBootDisk = isBootDisk,
        .hasMacOS = hasMacOS,
        .hasOpenCore = hasOpenCore,
        .hasClover = hasClover,
        .hasWindows = hasWindows,
        .hasLinux = hasLinux,
        .hasExFAT = hasExFAT,
        .isDiskImage = isDiskImage,
        .totalSpaceBytes = totalSpaceBytes,
        .usedSpaceBytes = usedSpaceBytes,
        .smartStatus = std::string(rawValue(smartStatus)),
        .isSolidState = isSolidState,
        .trimSupported = trimSupported,
        .busProtocol = busProtocol,
    };
    std::ranges::transform(efiPartitions, std::back_inserter(serialized.efiPartitions), &EFIPartition::toSerializable);
    return serialized;
}

std::string_view PhysicalDisk::diskIcon() const
{
    if (isBootDisk)
        return "applelogo";
    const bool isFilled = hasOpenCore || hasClover || hasMacOS || hasLinux || hasWindows || hasExFAT;
    return isFilled ? rowOf(diskType).filledSymbol : rowOf(diskType).outlineSymbol;
}

bool PhysicalDisk::operator==(const PhysicalDisk &other) const
{
    return identifier == other.identifier && name == other.name && size == other.size &&
           efiPartitions == other.efiPartitions && hasOpenCore == other.hasOpenCore && hasClover == other.hasClover &&
           hasMacOS == other.hasMacOS && hasWindows == other.hasWindows && hasLinux == other.hasLinux &&
           hasExFAT == other.hasExFAT && isBootDisk == other.isBootDisk && totalSpaceBytes == other.totalSpaceBytes &&
           usedSpaceBytes == other.usedSpaceBytes && smartStatus == other.smartStatus;
}

std::string encodeDisks(const std::vector<PhysicalDisk> &disks, JSONLayout layout)
{
    std::vector<SerializablePhysicalDisk> serialized;
    std::ranges::transform(disks, std::back_inserter(serialized), &PhysicalDisk::toSerializable);
    return encodeDisks(serialized, layout);
}

} // namespace brindle

std::size_t std::hash<brindle::PhysicalDisk>::operator()(const brindle::PhysicalDisk &disk) const noexcept
{
    brindle::Hasher hasher;
    hasher.feed(disk.identifier).feed(disk.efiPartitions.size());
    for (const brindle::EFIPartition &partition : disk.efiPartitions)
        hasher.feed(partition.identifier).feed(partition.isMounted);
    hasher.feed(disk.hasOpenCore).feed(disk.hasClover).feed(disk.isBootDisk);
    for (const std::optional<std::int64_t> &bytes : {disk.totalSpaceBytes, disk.usedSpaceBytes}) {
        hasher.feed(bytes.has_value());
        if (bytes)
            hasher.feed(*bytes);
    }
    return hasher.feed(rawValue(disk.smartStatus)).value();
}
