#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `automount list`, `add` and `remove`: the disks whose EFI partition is mounted by itself when they are plugged
/// in, as long as the application runs, or `watch --automount`. A mark is the disk's media UUID with its name, so that
/// it holds whatever identifier the disk has; one of a disk that isn't there is removed by its UUID. Status 3 where
/// there is no such disk, 1 where it has no UUID or no mark.
void addAutoMountCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
