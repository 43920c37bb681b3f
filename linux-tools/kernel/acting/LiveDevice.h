#pragma once

#include "acting/Actor.h"
#include "kernel/BlockDevices.h"
#include "kernel/Files.h"
#include "kernel/MountReader.h"
#include "kernel/acting/KernelCalls.h"

#include <cstdint>
#include <vector>

namespace brindle::tools {

/// The disk or partition that an action is about, looked up anew by its number alone, with the kernel's devices and
/// mounts as they are then. A number comes back for no other disk, so neither can the device.
class LiveDevice {
public:
    /// \throws ActionError where there is no such disk or partition any longer, or the kernel has no device for it.
    LiveDevice(const KernelRoots &roots, const Target &target);
    LiveDevice(const LiveDevice &) = delete;
    LiveDevice &operator=(const LiveDevice &) = delete;

    [[nodiscard]] const BlockDevices &devices() const { return m_devices; }
    [[nodiscard]] const BlockDevice &disk() const { return *m_disk; }
    [[nodiscard]] const BlockDevice &device() const { return *m_device; } ///< The disk itself, or the partition.

    [[nodiscard]] std::uint64_t number() const { return m_number; } ///< The N of "diskN".

    /// "disk2s1" for a partition of the disk, "disk2" for itself.
    [[nodiscard]] std::string identifierOf(const BlockDevice &device) const;

    /// The device, and its partitions where it is a whole disk.
    [[nodiscard]] std::vector<const BlockDevice *> parts() const;

    /// The mounts of what lies on them, in their order.
    [[nodiscard]] std::vector<CarriedMount> mounts() const;

    /// Opens the disk, or a partition of it, and makes sure that it is the one that was named. While the descriptor is
    /// open the kernel gives the device's name to no other disk.
    /// \throws ActionError where it can't be opened, or another disk has taken the place.
    [[nodiscard]] Descriptor open(const BlockDevice &device, int flags, KernelCalls &calls) const;

    /// The same on the whole disk, for reading, with the lock by which udev leaves a disk alone.
    [[nodiscard]] Descriptor lock(KernelCalls &calls) const;

private:
    [[nodiscard]] bool isStillThere() const;

    BlockDevices m_devices;
    MountReader m_mounts; // Refers to the devices.
    const BlockDevice *m_disk = nullptr;
    const BlockDevice *m_device = nullptr;
    std::uint64_t m_number = 0;
    std::string m_argument;
};

} // namespace brindle::tools
