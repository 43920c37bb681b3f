#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `system`: reads once what is known of the running machine and prints it as a table, or as a JSON object of the
/// fields that are present. Whatever the tools do, what is left is printed.
void addSystemCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
