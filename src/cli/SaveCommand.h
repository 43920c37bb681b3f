#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `save P PATH`: copies the EFI folder of a mounted EFI partition to PATH, which becomes the copy's own name and
/// must not exist, and tells each step.
void addSaveCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
