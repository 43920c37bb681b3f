#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `mount PARTITION`: scans once, mounts the EFI partition and tells where it is. One that is mounted stays so,
/// and no password is needed for it.
void addMountCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
