#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `erase-volume D --format F`: formats the one volume of a disk, once its name was typed or given. A disk without
/// a volume that can be told, a built-in one and the one that the system runs from are refused.
void addEraseVolumeCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
