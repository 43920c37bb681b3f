#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `verify A B`: compares two EFI folders whole, each told by its path or by its mounted EFI partition. Prints
/// what differs, and fails where anything does. B is read from its device and not from memory.
void addVerifyCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
