#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `height`: scans once and prints how high the list of disks is, in points, or {"height": points} as JSON. The
/// rows that are open are those that the user left open, unless `--expand` names others.
void addHeightCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
