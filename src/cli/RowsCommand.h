#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `rows`: scans once and prints what the rows of the disk list show, for people or as a JSON array of objects.
void addRowsCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
