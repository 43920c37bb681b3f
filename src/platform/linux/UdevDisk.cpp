#include "platform/linux/UdevDisk.h"

#include "base/Text.h"

#include <fmt/format.h>
#include <libudev.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <system_error>
#include <vector>

namespace brindle {

namespace fs = std::filesystem;
using namespace std::string_view_literals;

namespace {

std::string_view lastPart(std::string_view path)
{
    return path.substr(path.rfind('/') + 1);
}

std::string_view viewOf(const char *text)
{
    return text ? std::string_view(text) : std::string_view();
}

std::string_view attribute(udev_device *device, const char *name)
{
    return trimmed(viewOf(udev_device_get_sysattr_value(device, name)));
}

std::string_view property(udev_device *device, const char *name)
{
    return viewOf(udev_device_get_property_value(device, name));
}

bool hasMedium(udev_device *disk, std::string_view name)
{
    // The size of an optical drive is that of some medium even when there is none.
    if (name.starts_with("sr"))
        return property(disk, "ID_CDROM_MEDIA") == "1";
    const std::string_view size = attribute(disk, "size");
    return !size.empty() && size != "0";
}

std::string modelOf(udev_device *disk, std::string_view name)
{
    // The kernel cuts the model of an ATA drive to 16 letters; udev has asked for all of it.
    if (property(disk, "ID_BUS") == "ata" && !property(disk, "ID_MODEL_ENC").empty())
        return decodeUdevProperty(property(disk, "ID_MODEL_ENC"));
    const std::string_view model = attribute(disk, "device/model");
    const std::string_view vendor = attribute(disk, "device/vendor");
    const bool isUsb = udev_device_get_parent_with_subsystem_devtype(disk, "usb", "usb_device") != nullptr;
    if (!model.empty())
        return isUsb && !vendor.empty() ? fmt::format("{} {}", vendor, model) : std::string(model);
    if (const std::string_view card = attribute(disk, "device/name"); !card.empty())
        return std::string(card);
    if (name.starts_with("loop"))
        return "Disk Image";
    return name.starts_with("vd") ? "Virtio Disk" : name.starts_with("xvd") ? "Xen Disk" : "Disk";
}

/// "sda1 2048 409600": number and place of each partition that the kernel knows, in a fixed order.
std::vector<std::string> partitionsOf(udev_device *disk, const fs::path &sysPath, std::string_view name)
{
    std::vector<std::string> partitions;
    std::error_code error;
    for (fs::directory_iterator entry(sysPath, error), end; !error && entry != end; entry.increment(error)) {
        const std::string folder = entry->path().filename().string();
        const std::string_view start = attribute(disk, (folder + "/start").c_str());
        if (folder.starts_with(name) && !start.empty())
            partitions.push_back(fmt::format("{} {} {}", folder, start, attribute(disk, (folder + "/size").c_str())));
    }
    std::ranges::sort(partitions);
    return partitions;
}

// The kernel counts each new medium (diskseq, since Linux 5.15); a table that is written anew has a new UUID.
std::string contentsOf(udev_device *disk, const fs::path &sysPath, std::string_view name)
{
    std::string contents;
    for (const char *key : {"diskseq", "size"})
        contents += fmt::format("{}\n", attribute(disk, key));
    for (const char *key : {"ID_PART_TABLE_TYPE", "ID_PART_TABLE_UUID", "ID_FS_TYPE", "ID_FS_UUID", "ID_FS_LABEL_ENC"})
        contents += fmt::format("{}\n", property(disk, key));
    return contents + fmt::format("{}", fmt::join(partitionsOf(disk, sysPath, name), "\n"));
}

} // namespace

bool isListedDisk(std::string_view sysPath)
{
    constexpr std::array kNoDisks{"fd"sv, "mtdblock"sv};
    const std::string_view name = lastPart(sysPath);
    const bool isNoDisk =
        std::ranges::any_of(kNoDisks, [name](std::string_view prefix) { return name.starts_with(prefix); });
    const bool isBootArea = name.starts_with("mmcblk") && contains(name, "boot");
    const bool isMadeOfOthers = contains(sysPath, "/devices/virtual/block/") && !name.starts_with("loop");
    return !isMadeOfOthers && !isNoDisk && !isBootArea;
}

std::optional<UdevDisk> readUdevDisk(udev_device *disk)
{
    const std::string_view sysPath = viewOf(udev_device_get_syspath(disk));
    const std::string_view name = lastPart(sysPath);
    if (!hasMedium(disk, name))
        return std::nullopt;
    return UdevDisk{.mediaName = fmt::format("{} ({})", modelOf(disk, name), name),
                    .contents = contentsOf(disk, sysPath, name)};
}

std::string decodeUdevProperty(std::string_view text)
{
    constexpr std::string_view kEscape = "\\x";
    constexpr std::size_t kLength = 4;
    constexpr int kHexadecimal = 16;
    std::string decoded;
    while (!text.empty()) {
        unsigned char byte = static_cast<unsigned char>(text.front());
        std::size_t length = 1;
        if (text.starts_with(kEscape) && text.size() >= kLength) {
            const auto [end, error] =
                std::from_chars(text.data() + kEscape.size(), text.data() + kLength, byte, kHexadecimal);
            const bool isWhole = error == std::errc() && end == text.data() + kLength;
            length = isWhole ? kLength : length;
            byte = isWhole ? byte : static_cast<unsigned char>(text.front());
        }
        decoded += byte < ' ' || byte == 0x7F ? "\uFFFD" : std::string(1, static_cast<char>(byte));
        text.remove_prefix(length);
    }
    return std::string(trimmed(decoded));
}

} // namespace brindle
