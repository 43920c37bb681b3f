#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `settings list`, `settings get KEY` and `settings set KEY VALUE`, which show and change the settings that the
/// application shares. Where a key has no value, what the program acts by is told. A key that the program doesn't
/// know and a value that isn't legal for its key are wrong usage.
void addSettingsCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
