#include "kernel/DiskQualities.h"

#include "kernel/Files.h"
#include "text/Words.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace brindle::tools {
namespace {

struct Bus {
    std::string_view mark; ///< In the disk's path of sysfs, before a number.
    std::string_view protocol;
    bool isExternal = false;
    DriveCommands commands = DriveCommands::none;
};

// The first mark that the path holds decides: a disk behind USB or SATA is a SCSI disk too.
constexpr std::array kBuses{
    Bus{"/virtual/block/loop", "Disk Image"},
    Bus{"/usb", "USB", true},
    Bus{"/fw", "FireWire", true},
    Bus{"/session", "iSCSI", true},
    Bus{"/ata", "SATA", false, DriveCommands::ata},
    Bus{"/end_device-", "SAS"},
    Bus{"/nvme", "PCI-Express", false, DriveCommands::nvme},
    Bus{"/virtio", "Virtio"},
    Bus{"/mmc", "Secure Digital"},
    Bus{"/vbd-", "Xen"},
    Bus{"/host", "SCSI"},
};

bool holdsMark(std::string_view path, std::string_view mark)
{
    for (std::size_t at = path.find(mark); at != std::string_view::npos; at = path.find(mark, at + 1)) {
        const std::string_view behind = path.substr(at + mark.size());
        if (!behind.empty() && behind.front() >= '0' && behind.front() <= '9')
            return true;
    }
    return false;
}

/// Whether a bridge on the way to the disk is a port for things outside, such as Thunderbolt.
bool isBehindAnExternalPort(const BlockDevices &devices, const BlockDevice &disk)
{
    constexpr std::string_view kPci = "/devices/pci";
    std::string path = disk.path;
    while (path.starts_with(kPci)) {
        path.resize(path.rfind('/'));
        if (trimmed(fileBytes(devices.roots().sys + path + "/removable")) == "removable")
            return true;
    }
    return false;
}

bool isSoldered(const BlockDevices &devices, const BlockDevice &disk)
{
    return devices.attribute(disk, "device/type") == "MMC"; // A card says "SD".
}

std::string baseName(std::string_view path)
{
    return std::string(path.substr(path.rfind('/') + 1));
}

std::string modelOf(const BlockDevices &devices, const BlockDevice &disk, const Attachment &attachment,
                    const std::optional<UdevRecord> &record)
{
    if (disk.isLoop())
        return baseName(devices.attribute(disk, "loop/backing_file"));
    // The kernel cuts the model of an ATA drive to 16 letters; udev has asked for all of it.
    if (record && record->bus == "ata" && !record->model.empty())
        return std::string(trimmed(record->model));
    const std::string model = devices.attribute(disk, "device/model");
    if (model.empty())
        return devices.attribute(disk, "device/name"); // A card's
    const std::string vendor = attachment.protocol == "USB" ? devices.attribute(disk, "device/vendor") : std::string();
    return vendor.empty() ? model : vendor + " " + model;
}

} // namespace

Attachment attachmentOf(const BlockDevices &devices, const BlockDevice &disk)
{
    const auto bus =
        std::ranges::find_if(kBuses, [&](const Bus &candidate) { return holdsMark(disk.path, candidate.mark); });
    if (bus == kBuses.end())
        return {};
    Attachment attachment{
        .protocol = std::string(bus->protocol), .isExternal = bus->isExternal, .commands = bus->commands};
    if (bus->mark == "/mmc" && isSoldered(devices, disk))
        attachment.protocol = "eMMC";
    attachment.isExternal = attachment.isExternal || isBehindAnExternalPort(devices, disk);
    return attachment;
}

std::string mediaName(const BlockDevices &devices, const BlockDevice &disk, const Attachment &attachment,
                      const std::optional<UdevRecord> &record)
{
    std::string model = modelOf(devices, disk, attachment, record);
    if (model.empty())
        model = attachment.protocol.empty() ? "Disk" : attachment.protocol + " Disk";
    return model + " (" + disk.name + ")";
}

bool isRemovable(const BlockDevices &devices, const BlockDevice &disk)
{
    const bool isCard = holdsMark(disk.path, "/mmc") && !isSoldered(devices, disk);
    return isCard || devices.number(disk, "removable") != 0;
}

} // namespace brindle::tools
