#include "kernel/MountReader.h"

#include "kernel/DiskReader.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

namespace brindle::tools {
namespace {

/// The identifier and the volume of each device node of the disks.
struct Place {
    std::string_view identifier;
    const std::optional<Volume> *volume = nullptr;
};
using Places = std::unordered_map<std::string_view, Place>;

Places placesOf(const std::vector<Disk> &disks)
{
    Places places;
    for (const Disk &disk : disks) {
        places[disk.node] = {disk.identifier, &disk.volume};
        for (const Partition &partition : disk.partitions)
            places[partition.node] = {partition.identifier, &partition.volume};
    }
    return places;
}

/// What is mounted, where the carrier's own volume doesn't tell it.
std::optional<Volume> mountedVolume(const BlockDevices &devices, const MountEntry &entry, const Carrier &carrier,
                                    const Place &place)
{
    const bool isOwn = carrier.source == carrier.carrier || carrier.isBehindFiles;
    if (isOwn && (carrier.isBehindFiles || place.volume->has_value()))
        return std::nullopt;
    const auto record = isOwn ? std::nullopt : udevRecord(devices, *carrier.source);
    if (record && record->volume)
        return record->volume;
    return Volume{.fileSystem = entry.fileSystem, .version = {}, .name = {}, .uuid = {}};
}

/// Whether the path leads to this file system and not to one that was mounted over it.
bool isOnTop(const MountEntry &entry)
{
    struct stat status {};
    if (::stat(entry.mountPoint.c_str(), &status) != 0)
        return false;
    // btrfs and its like give each of their parts a number of its own, which no mount entry knows.
    return entry.device.major == 0 ||
           entry.device == DeviceNumber{.major = major(status.st_dev), .minor = minor(status.st_dev)};
}

std::optional<Space> spaceOf(const MountEntry &entry)
{
    struct statvfs status {};
    if (!isOnTop(entry) || ::statvfs(entry.mountPoint.c_str(), &status) != 0)
        return std::nullopt;
    return Space{.totalBytes = status.f_blocks * status.f_frsize,
                 .usedBytes = (status.f_blocks - status.f_bfree) * status.f_frsize,
                 .availableBytes = status.f_bavail * status.f_frsize,
                 .usedNodes = status.f_files - status.f_ffree,
                 .freeNodes = status.f_ffree};
}

} // namespace

MountReader::MountReader(const BlockDevices &devices, std::string_view mountTable)
    : m_devices(devices),
      m_entries(parseMountTable(mountTable)),
      m_carriers(devices, m_entries, [this](std::string_view pool) { return poolMember(pool); })
{
}

const BlockDevice *MountReader::poolMember(std::string_view pool) const
{
    for (const BlockDevice &device : m_devices.all()) {
        const auto record = udevRecord(m_devices, device);
        if (record && record->volume && record->volume->fileSystem == "zfs_member" && record->volume->name == pool)
            return &device;
    }
    return nullptr;
}

const BlockDevice *MountReader::carrierAt(std::string_view mountPoint) const
{
    // Of several mounts at one place the last hides the others.
    for (auto entry = m_entries.rbegin(); entry != m_entries.rend(); ++entry) {
        const BlockDevice *carrier = entry->mountPoint == mountPoint ? m_carriers.of(*entry).carrier : nullptr;
        if (carrier)
            return carrier;
    }
    return nullptr;
}

std::string MountReader::whyWithoutCarrier(std::string_view mountPoint) const
{
    const MountEntry *const entry = at(mountPoint);
    if (!entry)
        return {};
    if (entry->fileSystem == "overlay")
        return fmt::format("{} is an overlay of folders that lie on no disk which can be seen from here", mountPoint);
    return fmt::format("{} is a file system of type {}, which lies on no disk that can be seen from here", mountPoint,
                       entry->fileSystem);
}

std::string MountReader::mountPointOf(const BlockDevice &device) const
{
    const auto isOfDevice = [&](const MountEntry &entry) { return m_carriers.of(entry).source == &device; };
    const auto entry = std::ranges::find_if(m_entries, isOfDevice);
    return entry == m_entries.end() ? std::string() : entry->mountPoint;
}

const MountEntry *MountReader::at(std::string_view mountPoint) const
{
    const auto entry = std::find_if(m_entries.rbegin(), m_entries.rend(),
                                    [&](const MountEntry &each) { return each.mountPoint == mountPoint; });
    return entry == m_entries.rend() ? nullptr : &*entry;
}

std::vector<CarriedMount> MountReader::carriedBy(const std::vector<const BlockDevice *> &carriers) const
{
    std::vector<CarriedMount> mounts;
    for (const MountEntry &entry : m_entries) {
        const Carrier carrier = m_carriers.of(entry);
        if (carrier.carrier && std::ranges::find(carriers, carrier.carrier) != carriers.end())
            mounts.push_back({&entry, carrier.carrier, carrier.source == carrier.carrier && !carrier.isBehindFiles});
    }
    return mounts;
}

std::vector<Mount> MountReader::read(const std::vector<Disk> &disks, bool withSpace) const
{
    const Places places = placesOf(disks);
    std::set<DeviceNumber> counted;
    std::vector<Mount> mounts;
    for (const MountEntry &entry : m_entries) {
        const Carrier carrier = m_carriers.of(entry);
        const auto place = carrier.carrier ? places.find(BlockDevices::node(*carrier.carrier)) : places.end();
        if (place == places.end())
            continue;
        Mount mount{.carrier = std::string(place->second.identifier),
                    .mountPoint = entry.mountPoint,
                    .isWhole = entry.root == "/",
                    .isReadOnly = entry.isReadOnly};
        mount.volume = mountedVolume(m_devices, entry, carrier, place->second);
        if (withSpace && !carrier.isBehindFiles && !counted.contains(entry.device)) {
            mount.space = spaceOf(entry);
            if (mount.space)
                counted.insert(entry.device);
        }
        mounts.push_back(std::move(mount));
    }
    return mounts;
}

} // namespace brindle::tools
