#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `icon-state`: scans once and prints the name of the state that the status icon shows.
void addIconStateCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
