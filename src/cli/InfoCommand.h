#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `info DISK`: scans once and prints the details of the disk, by its identifier. A disk that is not among the
/// visible ones is not found.
void addInfoCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
