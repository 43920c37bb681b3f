#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `unmount PARTITION`: scans once and unmounts the EFI partition, by force where it is busy. One that is not
/// mounted stays so, and no password is needed for it.
void addUnmountCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
