#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `eject DISK`: scans once, lets the disk go and prints what the tool says. A built-in disk and the one that the
/// system runs from are refused. Needs no password.
void addEjectCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
