#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `rename TARGET NAME`: scans once and gives an EFI partition, or the one volume that a disk shows, a new name.
void addRenameCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
