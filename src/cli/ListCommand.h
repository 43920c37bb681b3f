#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `list`: scans once and prints the visible disks in display order, as a table, or as a JSON array of disk
/// objects in the persisted form. A scan never fails: whatever the tools do, what is left is printed.
void addListCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
