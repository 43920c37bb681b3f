#pragma once

#include "assembly/Assembly.h"
#include "cli/Command.h"
#include "cli/ExitStatus.h"
#include "efi/RowActions.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

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

/// Throws an Error for a disk that RowActions::canEject() excludes, which is not \a treated: "ejected", "erased".
void requireRemovable(const PhysicalDisk &disk, std::string_view treated);

/// Says that there is no such thing. \a kind is "disk" or the like.
ExitStatus tellNotFound(const std::string &kind, const std::string &identifier);

/// Waits, not for long, until the desktop has taken the notifications that were sent.
void awaitNotifications(Assembly &assembly);

using EFIPartitionAction = std::function<void(Assembly &assembly, const FoundPartition &found)>;

/// Lets \a subcommand take an EFI partition, the password and `--notify`, scan once and \a act on the partition; one
/// that is not there is told.
std::shared_ptr<ActingOptions> addEFIPartitionAction(CLI::App &subcommand, const GlobalOptions &options,
                                                     Command &command, EFIPartitionAction act);

} // namespace brindle
