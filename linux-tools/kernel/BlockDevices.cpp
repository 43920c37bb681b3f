#include "kernel/BlockDevices.h"

#include "kernel/Files.h"
#include "text/LineReading.h"
#include "text/Words.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace brindle::tools {
namespace {

constexpr std::string_view kNodes = "/dev/";
constexpr std::string_view kVirtual = "/devices/virtual/block/";

std::string_view lastPart(std::string_view path)
{
    return path.substr(path.rfind('/') + 1);
}

std::string_view directoryOf(std::string_view path)
{
    return path.substr(0, path.rfind('/'));
}

/// sysfs can't have the slash of "cciss/c0d0" in a name.
std::string nodeName(const BlockDevice &device)
{
    std::string name = device.name;
    std::ranges::replace(name, '!', '/');
    return name;
}

} // namespace

std::optional<DeviceNumber> parseDeviceNumber(std::string_view text)
{
    DeviceNumber number;
    const char *const end = text.data() + text.size();
    const auto [colon, majorError] = std::from_chars(text.data(), end, number.major);
    if (majorError != std::errc() || colon == end || *colon != ':')
        return std::nullopt;
    const auto [rest, minorError] = std::from_chars(colon + 1, end, number.minor);
    return minorError == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

bool BlockDevice::isVirtual() const
{
    return path.starts_with(kVirtual);
}

bool BlockDevice::isLoop() const
{
    return isVirtual() && std::string_view(path).substr(kVirtual.size()).starts_with("loop");
}

std::uint64_t BlockDevice::partitionNumber() const
{
    // The kernel puts a "p" between a disk's name that ends with a digit and the number.
    std::string_view digits = name;
    digits.remove_prefix(std::min(parent.size(), digits.size()));
    if (digits.starts_with('p'))
        digits.remove_prefix(1);
    return parent.empty() ? 0 : leadingNumber(digits).value_or(0);
}

BlockDevices::BlockDevices(KernelRoots roots) : m_roots(std::move(roots))
{
    const std::string directory = m_roots.sys + "/dev/block/";
    for (const std::string &entry : namesIn(directory)) {
        const auto number = parseDeviceNumber(entry);
        const std::string target = linkTarget(directory + entry); // "../../devices/…/sda/sda1"
        const std::size_t start = target.find("/devices/");
        if (number && start != std::string::npos)
            m_devices.push_back(
                {.number = *number, .name = std::string(lastPart(target)), .path = target.substr(start), .parent = {}});
    }
    std::ranges::sort(m_devices, {}, &BlockDevice::number);
    std::vector<std::string_view> paths;
    for (const BlockDevice &device : m_devices)
        paths.push_back(device.path);
    std::ranges::sort(paths);
    for (BlockDevice &device : m_devices) {
        const std::string_view directoryPath = directoryOf(device.path);
        if (std::ranges::binary_search(paths, directoryPath))
            device.parent = lastPart(directoryPath);
    }
}

const BlockDevice *BlockDevices::byNumber(DeviceNumber number) const
{
    const auto found = std::ranges::lower_bound(m_devices, number, {}, &BlockDevice::number);
    return found != m_devices.end() && found->number == number ? &*found : nullptr;
}

const BlockDevice *BlockDevices::byName(std::string_view name) const
{
    const auto found = std::ranges::find(m_devices, name, &BlockDevice::name);
    return found == m_devices.end() ? nullptr : &*found;
}

const BlockDevice *BlockDevices::byNode(std::string_view node) const
{
    if (!node.starts_with(kNodes))
        return nullptr;
    const std::string_view name = node.substr(kNodes.size());
    if (const BlockDevice *device = byName(name))
        return device;
    return byFile(m_roots.dev + '/' + std::string(name));
}

const BlockDevice *BlockDevices::byFile(const std::string &path) const
{
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISBLK(status.st_mode))
        return nullptr;
    return byNumber({.major = major(status.st_rdev), .minor = minor(status.st_rdev)});
}

std::vector<const BlockDevice *> BlockDevices::partitionsOf(const BlockDevice &disk) const
{
    std::vector<const BlockDevice *> partitions;
    for (const BlockDevice &device : m_devices) {
        if (device.parent == disk.name)
            partitions.push_back(&device);
    }
    return partitions;
}

std::string BlockDevices::node(const BlockDevice &device)
{
    return std::string(kNodes) + nodeName(device);
}

std::string BlockDevices::file(const BlockDevice &device) const
{
    return m_roots.dev + '/' + nodeName(device);
}

std::string BlockDevices::attribute(const BlockDevice &device, std::string_view file) const
{
    return std::string(trimmed(fileBytes(m_roots.sys + device.path + '/' + std::string(file))));
}

std::uint64_t BlockDevices::number(const BlockDevice &device, std::string_view file) const
{
    return leadingNumber(attribute(device, file)).value_or(0);
}

std::vector<const BlockDevice *> BlockDevices::componentsOf(const BlockDevice &device) const
{
    std::vector<const BlockDevice *> components;
    for (const std::string &name : namesIn(m_roots.sys + device.path + "/slaves")) {
        if (const BlockDevice *component = byName(name))
            components.push_back(component);
    }
    return components;
}

const BlockDevice &BlockDevices::lowestOf(const BlockDevice &device) const
{
    constexpr int kDeepest = 16; // Devices that lie on one another in a ring would have no end.
    const BlockDevice *current = &device;
    for (int depth = 0; depth < kDeepest && current->isVirtual(); ++depth) {
        // A partition of an md device has its components listed at the device.
        const BlockDevice *whole = current->parent.empty() ? current : byName(current->parent);
        const auto components = whole ? componentsOf(*whole) : std::vector<const BlockDevice *>();
        if (components.empty())
            return *current;
        current = components.front();
    }
    return *current;
}

} // namespace brindle::tools
