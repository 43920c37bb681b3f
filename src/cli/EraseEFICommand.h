#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `erase-efi P`: formats an EFI partition as FAT32, once its name was typed or given. The one of the disk that
/// the system runs from is refused.
void addEraseEFICommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
