#include "kernel/DiskReader.h"

#include "inventory/Identifier.h"
#include "kernel/DriveHealth.h"
#include "kernel/PartitionTypes.h"
#include "kernel/UDisksModule.h"

#include <algorithm>
#include <cerrno>
#include <climits> // CDSL_CURRENT needs it.
#include <utility>

#include <fcntl.h>
#include <linux/cdrom.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

namespace brindle::tools {
namespace {

constexpr std::uint64_t kSector = 512; // sysfs counts in these, whatever the disk's blocks are.

// Without O_NONBLOCK an open would close the tray of an optical drive, or fail without a medium.
constexpr int kReading = O_RDONLY | O_NONBLOCK | O_NOCTTY;

bool isOptical(const BlockDevice &device)
{
    return device.name.starts_with("sr");
}

} // namespace

bool isShown(const BlockDevice &device)
{
    // A floppy drive doesn't tell whether a disk is in, and flash without a controller is no disk.
    const bool isNoDisk = device.name.starts_with("fd") || device.name.starts_with("mtdblock");
    // The boot areas of an eMMC chip are not for partitions.
    const bool isBootArea = device.name.starts_with("mmcblk") && device.name.find("boot") != std::string::npos;
    return device.parent.empty() && (!device.isVirtual() || device.isLoop()) && !isNoDisk && !isBootArea;
}

std::uint64_t diskNumber(const BlockDevices &devices, const BlockDevice &disk)
{
    if (const std::uint64_t sequence = devices.number(disk, "diskseq"))
        return sequence;
    // Kernels before 5.15 don't count disks. They do count the folders of sysfs, and start again at a boot only.
    struct stat status {};
    return ::stat((devices.roots().sys + disk.path).c_str(), &status) == 0 ? status.st_ino : 0;
}

std::optional<UdevRecord> udevRecord(const BlockDevices &devices, const BlockDevice &device)
{
    const std::string number = std::to_string(device.number.major) + ':' + std::to_string(device.number.minor);
    const auto text = readFile(devices.roots().udevData + "/b" + number);
    return text ? std::optional(parseUdevRecord(*text)) : std::nullopt;
}

DiskReader::DiskReader(const BlockDevices &devices, const BlockDevice &disk, const Scope &scope, DiskParts parts)
    : m_devices(devices),
      m_device(disk),
      m_scope(scope),
      m_asked(parts)
{
}

std::optional<Disk> DiskReader::read(std::uint64_t number)
{
    Disk disk{.identifier = diskIdentifier(number), .node = BlockDevices::node(m_device)};
    disk.sizeBytes = m_devices.number(m_device, "size") * kSector;
    m_record = udevRecord(m_devices, m_device);
    if (disk.sizeBytes == 0 || !hasMedium())
        return std::nullopt;
    m_attachment = attachmentOf(m_devices, m_device);
    disk.protocol = m_attachment.protocol;
    disk.isExternal = m_attachment.isExternal;
    disk.isImage = m_device.isLoop();
    findPartitions();
    const ProbedContents contents = m_scope.withContents ? readContents() : ProbedContents{};
    disk.scheme = schemeName(contents.table);
    disk.volume = contents.volume;
    readPartitions(disk, contents);
    return disk;
}

void DiskReader::findPartitions()
{
    for (const BlockDevice *device : m_devices.partitionsOf(m_device)) {
        m_isScanned = true;
        if (isAsked(device->partitionNumber()))
            m_parts.push_back({device, m_scope.withContents ? udevRecord(m_devices, *device) : std::nullopt});
    }
}

bool DiskReader::hasMedium()
{
    // The size of an optical drive is that of some medium even when there is none.
    if (!isOptical(m_device))
        return true;
    if (m_record)
        return m_record->hasOpticalMedium;
    return opened().isValid() && ::ioctl(opened().get(), CDROM_DRIVE_STATUS, CDSL_CURRENT) == CDS_DISC_OK;
}

ProbedContents DiskReader::readContents()
{
    ProbedContents contents;
    if (m_record) {
        contents.table = m_record->tableType;
        contents.volume = m_record->volume;
    }
    if (!needsProbe(contents.table))
        return contents;
    if (mayBeRead()) {
        ProbedContents probed = probeContents(opened().get());
        if (!m_record || !probed.table.empty())
            contents = std::move(probed);
    }
    m_isRefused = m_openError == EACCES || m_openError == EPERM;
    return contents;
}

/// Whether udev leaves something open: the disk, a partition, or a table that the kernel hasn't read.
bool DiskReader::needsProbe(const std::string &table) const
{
    const auto isUnknown = [](const Part &part) { return !part.record || part.record->entryType.empty(); };
    const bool isUnread = !m_isScanned && !table.empty() && m_asked != kNoPart;
    return !m_record || isUnread || std::ranges::any_of(m_parts, isUnknown);
}

void DiskReader::readPartitions(Disk &disk, const ProbedContents &contents)
{
    const auto add = [&](std::optional<Partition> partition, std::uint64_t number) {
        if (!partition)
            return;
        partition->identifier = partitionIdentifier(disk.identifier, number);
        disk.partitions.push_back(std::move(*partition));
    };
    for (const Part &part : m_parts)
        add(scanned(part, contents), part.device->partitionNumber());
    for (const ProbedEntry &entry : contents.entries) {
        if (!m_isScanned && isAsked(entry.number))
            add(unscanned(entry, contents.table), entry.number);
    }
    std::ranges::stable_sort(disk.partitions, {}, &Partition::offsetBytes);
}

/// A partition that the kernel has a device for. None for one that only holds MBR's logical ones.
std::optional<Partition> DiskReader::scanned(const Part &part, const ProbedContents &contents)
{
    Partition partition{.node = BlockDevices::node(*part.device)};
    partition.offsetBytes = m_devices.number(*part.device, "start") * kSector;
    partition.sizeBytes = m_devices.number(*part.device, "size") * kSector;
    std::string table = contents.table;
    std::string code;
    if (part.record && !part.record->entryType.empty()) {
        table = part.record->entryTable;
        code = part.record->entryType;
        partition.uuid = part.record->entryUuid;
    } else {
        const auto entry = std::ranges::find(contents.entries, part.device->partitionNumber(), &ProbedEntry::number);
        if (entry != contents.entries.end()) {
            code = entry->type;
            partition.uuid = entry->uuid;
        }
    }
    if (isExtended(table, code))
        return std::nullopt;
    partition.type = partitionTypeName(table, code);
    if (part.record) {
        partition.volume = part.record->volume;
    } else if (m_scope.withContents && mayBeRead()) {
        // Its own device, not its place on the disk: what was written to one is not at once read from the other.
        const Descriptor node(m_devices.file(*part.device), kReading);
        if (node.isValid())
            partition.volume = probeVolume(node.get(), 0, 0);
    }
    return partition;
}

std::optional<Partition> DiskReader::unscanned(const ProbedEntry &entry, const std::string &table)
{
    if (isExtended(table, entry.type))
        return std::nullopt;
    Partition partition{.type = partitionTypeName(table, entry.type), .uuid = entry.uuid};
    partition.offsetBytes = entry.offsetBytes;
    partition.sizeBytes = entry.sizeBytes;
    if (entry.sizeBytes > 0) // To libblkid no size means all that follows.
        partition.volume = probeVolume(opened().get(), entry.offsetBytes, entry.sizeBytes);
    return partition;
}

void DiskReader::readDetails(Disk &disk, bool withHealth)
{
    disk.mediaName = mediaName(m_devices, m_device, m_attachment, m_record);
    disk.blockBytes = m_devices.number(m_device, "queue/logical_block_size");
    disk.isRemovable = isRemovable(m_devices, m_device);
    disk.isReadOnly = m_devices.number(m_device, "ro") != 0;
    disk.isSolidState = m_devices.attribute(m_device, "queue/rotational") == "0";
    disk.supportsTrim = m_devices.number(m_device, "queue/discard_max_bytes") != 0;
    if (withHealth)
        disk.smart = health();
}

Smart DiskReader::health()
{
    if (isOptical(m_device) || m_device.isLoop())
        return Smart::notSupported;
    const Smart own = healthFromDrive();
    return own == Smart::notSupported ? healthFromUDisks(m_devices.roots().systemBus, m_device.name) : own;
}

/// What the drive says to who may ask it: root alone.
Smart DiskReader::healthFromDrive()
{
    if (m_attachment.commands == DriveCommands::none || !isAwake() || !opened().isValid())
        return Smart::notSupported;
    if (m_attachment.commands == DriveCommands::nvme)
        return nvmeHealth(opened().get());
    return isAtaDriveAsleep(opened().get()) == false ? ataHealth(opened().get()) : Smart::notSupported;
}

/// Whether reading succeeds and doesn't start the motor of a disk that has stopped it.
bool DiskReader::mayBeRead()
{
    if (!isAwake() || !opened().isValid())
        return false;
    const bool hasMotor = m_attachment.commands == DriveCommands::ata && !isOptical(m_device) &&
                          m_devices.number(m_device, "queue/rotational") != 0;
    return !hasMotor || isAtaDriveAsleep(opened().get()) == false;
}

/// Whether the kernel keeps the device awake: opening one that it has sent to sleep wakes it.
bool DiskReader::isAwake()
{
    return m_devices.attribute(m_device, "device/power/runtime_status") != "suspended";
}

const Descriptor &DiskReader::opened()
{
    if (!m_descriptor) {
        m_descriptor.emplace(m_devices.file(m_device), kReading);
        m_openError = m_descriptor->isValid() ? 0 : errno;
    }
    return *m_descriptor;
}

} // namespace brindle::tools
