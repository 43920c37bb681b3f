#pragma once

#include "inventory/InventorySource.h"
#include "kernel/BlockDevices.h"
#include "kernel/BlockProbe.h"
#include "kernel/DiskQualities.h"
#include "kernel/Files.h"
#include "kernel/UdevRecord.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace brindle::tools {

/// Whether the tools show the device as a disk at all, medium or not.
[[nodiscard]] bool isShown(const BlockDevice &device);

/// The N of "diskN": it stays as long as the device or its medium does, and comes to no other before the next boot.
[[nodiscard]] std::uint64_t diskNumber(const BlockDevices &devices, const BlockDevice &disk);

/// What udev knows of a device; `nullopt` where udev doesn't run or hasn't seen it.
[[nodiscard]] std::optional<UdevRecord> udevRecord(const BlockDevices &devices, const BlockDevice &device);

/// Which partitions of a disk are read: the one of a number, none (0), or all.
using DiskParts = std::optional<std::uint64_t>;
constexpr DiskParts kAllParts = std::nullopt;
constexpr std::uint64_t kNoPart = 0;

/// Reads one whole disk of the kernel with its partitions. An object is for one reading: it opens the disk at most
/// once, and only when something is asked that udev doesn't know.
class DiskReader {
public:
    /// All outlive the reader.
    DiskReader(const BlockDevices &devices, const BlockDevice &disk, const Scope &scope, DiskParts parts);

    /// `nullopt` when there is no medium in the drive, or the disk is gone.
    [[nodiscard]] std::optional<Disk> read(std::uint64_t number);

    /// Adds to a disk that was read its medium's name and qualities and, if wanted, its health.
    void readDetails(Disk &disk, bool withHealth);

    /// Whether the contents are missing because the caller may not read the device.
    [[nodiscard]] bool isRefused() const { return m_isRefused; }

private:
    struct Part {
        const BlockDevice *device = nullptr;
        std::optional<UdevRecord> record;
    };

    [[nodiscard]] bool isAsked(std::uint64_t partition) const { return m_asked.value_or(partition) == partition; }
    [[nodiscard]] bool hasMedium();
    void findPartitions();
    [[nodiscard]] ProbedContents readContents();
    [[nodiscard]] bool needsProbe(const std::string &table) const;
    void readPartitions(Disk &disk, const ProbedContents &contents);
    [[nodiscard]] std::optional<Partition> scanned(const Part &part, const ProbedContents &contents);
    [[nodiscard]] std::optional<Partition> unscanned(const ProbedEntry &entry, const std::string &table);
    [[nodiscard]] Smart health();
    [[nodiscard]] Smart healthFromDrive();
    [[nodiscard]] bool mayBeRead();
    [[nodiscard]] bool isAwake();
    [[nodiscard]] const Descriptor &opened();

    const BlockDevices &m_devices;
    const BlockDevice &m_device;
    const Scope &m_scope;
    const DiskParts m_asked;
    Attachment m_attachment;
    std::optional<UdevRecord> m_record;
    std::vector<Part> m_parts; // That are asked.
    bool m_isScanned = false;  // Whether the kernel has devices for any partitions.
    bool m_isRefused = false;
    int m_openError = 0;
    std::optional<Descriptor> m_descriptor;
};

} // namespace brindle::tools
