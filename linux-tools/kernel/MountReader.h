#pragma once

#include "inventory/InventorySource.h"
#include "kernel/BlockDevices.h"
#include "kernel/Carriers.h"
#include "kernel/MountTable.h"

#include <string>
#include <string_view>
#include <vector>

namespace brindle::tools {

/// A mount of a file system that lies on a device.
struct CarriedMount {
    const MountEntry *entry = nullptr;
    const BlockDevice *carrier = nullptr;
    bool isOwn = false; ///< The carrier's own, not that of a device made of it or of a file on it.
};

/// The mounts of a table, /proc/self/mountinfo, over the kernel's devices.
class MountReader {
public:
    MountReader(const BlockDevices &devices, std::string_view mountTable); ///< The devices outlive the reader.

    /// The disk or partition that carries what is mounted at a place; null where nothing is, or nothing with a carrier.
    [[nodiscard]] const BlockDevice *carrierAt(std::string_view mountPoint) const;

    /// Why carrierAt() finds none though something is mounted there: a raw line. Empty where nothing is.
    [[nodiscard]] std::string whyWithoutCarrier(std::string_view mountPoint) const;

    /// Where a device is mounted first; empty where it isn't.
    [[nodiscard]] std::string mountPointOf(const BlockDevice &device) const;

    /// The mounts of what lies on \a carriers, disks and partitions, in their order.
    [[nodiscard]] std::vector<CarriedMount> carriedBy(const std::vector<const BlockDevice *> &carriers) const;

    /// What is mounted at a place last, and hides the others there; null for nothing.
    [[nodiscard]] const MountEntry *at(std::string_view mountPoint) const;

    /// The mounts of the file systems that lie on \a disks, in their order.
    [[nodiscard]] std::vector<Mount> read(const std::vector<Disk> &disks, bool withSpace) const;

private:
    [[nodiscard]] const BlockDevice *poolMember(std::string_view pool) const;

    const BlockDevices &m_devices;
    std::vector<MountEntry> m_entries;
    Carriers m_carriers; // Refers to the entries.
};

} // namespace brindle::tools
