#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `erase-disk D --format F`: makes a new partition map with an EFI partition and one volume, once the disk's name
/// was typed or given. A built-in disk and the one that the system runs from are refused.
void addEraseDiskCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
