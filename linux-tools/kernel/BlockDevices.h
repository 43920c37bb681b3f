#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle::tools {

/// Where the kernel and udev tell what they know. Tests point it to a tree of their own.
struct KernelRoots {
    std::string sys = "/sys";
    std::string dev = "/dev";
    std::string udevData = "/run/udev/data";
    std::string mountInfo = "/proc/self/mountinfo";
    std::string systemBus; ///< The address that UDisks2 is asked at; empty: it isn't.
};

/// What the kernel calls a device by, of the sort that stat(2) tells in st_rdev; ordered as the kernel lists devices.
struct DeviceNumber {
    unsigned major = 0;
    unsigned minor = 0;

    auto operator<=>(const DeviceNumber &) const = default;
};

/// Reads "254:3"; `nullopt` for any other text.
[[nodiscard]] std::optional<DeviceNumber> parseDeviceNumber(std::string_view text);

/// A block device as sysfs knows it.
struct BlockDevice {
    DeviceNumber number;
    std::string name;   ///< The kernel's: "nvme0n1p2".
    std::string path;   ///< Below the root of sysfs: "/devices/pci0000:00/…/nvme0n1/nvme0n1p2".
    std::string parent; ///< Of a partition, the name of its disk; else empty.

    [[nodiscard]] bool isVirtual() const; ///< Made by the kernel out of something else: loop, dm, md, zram, ram.
    [[nodiscard]] bool isLoop() const;

    /// The M of "nvme0n1pM"; 0 for a whole disk.
    [[nodiscard]] std::uint64_t partitionNumber() const;
};

/// The block devices of the running kernel, read once.
class BlockDevices {
public:
    explicit BlockDevices(KernelRoots roots);

    [[nodiscard]] const KernelRoots &roots() const { return m_roots; }
    [[nodiscard]] const std::vector<BlockDevice> &all() const { return m_devices; }
    [[nodiscard]] const BlockDevice *byNumber(DeviceNumber number) const;
    [[nodiscard]] const BlockDevice *byName(std::string_view name) const;

    /// The device of a node below "/dev/" or of a link to one, by the number that the node bears.
    [[nodiscard]] const BlockDevice *byNode(std::string_view node) const;

    /// The device of a node that lies anywhere, or of a link to one.
    [[nodiscard]] const BlockDevice *byFile(const std::string &path) const;

    [[nodiscard]] std::vector<const BlockDevice *> partitionsOf(const BlockDevice &disk) const;

    /// "/dev/nvme0n1p2"
    [[nodiscard]] static std::string node(const BlockDevice &device);

    /// Where that node is: below the roots' directory of devices.
    [[nodiscard]] std::string file(const BlockDevice &device) const;

    /// The text of a file in the device's sysfs directory ("queue/rotational"), without blanks at its ends; empty
    /// when there is none.
    [[nodiscard]] std::string attribute(const BlockDevice &device, std::string_view file) const;

    /// The same as a number; 0 when it isn't one.
    [[nodiscard]] std::uint64_t number(const BlockDevice &device, std::string_view file) const;

    /// What the device is made of, by name: the disks and partitions below a device-mapper or md device.
    [[nodiscard]] std::vector<const BlockDevice *> componentsOf(const BlockDevice &device) const;

    /// The first disk or partition below a device-mapper or md device; a device that has none below it, itself.
    [[nodiscard]] const BlockDevice &lowestOf(const BlockDevice &device) const;

private:
    KernelRoots m_roots;
    std::vector<BlockDevice> m_devices; // By number.
};

} // namespace brindle::tools
