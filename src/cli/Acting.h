#pragma once

#include "assembly/Assembly.h"
#include "cli/ExitStatus.h"
#include "efi/RowActions.h"

#include <functional>
#include <optional>
#include <string>

namespace brindle {

/// An EFI partition with the disk that it lies on.
struct FoundPartition {
    PhysicalDisk disk;
    EFIPartition partition;
};

/// The EFI partition \a identifier of the visible disks; nullopt where none has it.
[[nodiscard]] std::optional<FoundPartition> findEFIPartition(const DiskManager &manager, const std::string &identifier);

/// The disk \a identifier among the visible ones; nullopt where it isn't.
[[nodiscard]] std::optional<PhysicalDisk> findDisk(const DiskManager &manager, const std::string &identifier);

/// What the row of a disk or partition does, with nobody to be told of its start and end.
[[nodiscard]] RowActions rowActionsOf(Assembly &assembly);

/// Says that there is no such thing. \a kind is "disk" or the like.
ExitStatus tellNotFound(const std::string &kind, const std::string &identifier);

/// Waits, not for long, until the desktop has taken the notifications that were sent.
void awaitNotifications(Assembly &assembly);

/// Scans once and lets \a act on the EFI partition; one that is not there is told.
ExitStatus onEFIPartition(Platform platform, const std::string &identifier,
                          const std::function<void(Assembly &assembly, const FoundPartition &found)> &act);

} // namespace brindle
