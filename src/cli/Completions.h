#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `completion`: prints a shell's completion script for the commands and options of \a app.
void addCompletionCommand(CLI::App &app, Command &command);

} // namespace brindle
