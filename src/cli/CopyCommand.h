#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `copy P Q`: copies the EFI folder of one mounted EFI partition to another, and tells each step. Where Q has an
/// EFI folder it asks what shall become of that, unless `--backup PATH` or `--overwrite` says so; without anybody to
/// ask that is wrong usage, and nothing has changed then.
void addCopyCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
