#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `password set`, `password test` and `password remove`: asks for the administrator password, proves and stores
/// it; proves the stored one; forgets it. For root, who needs none, the first two fail.
void addPasswordCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
