#pragma once

#include "cli/Command.h"

namespace brindle {

/// Adds `watch`: scans, follows the disks' events, and prints each list that is published, as a table with an empty
/// line behind it, or as a JSON object on one line; flushed. Marked disks are mounted with `--automount` alone. Between
/// events it does nothing at all. SIGHUP, SIGINT and SIGTERM end it well; it fails when nobody reads its output any
/// more.
void addWatchCommand(CLI::App &app, const GlobalOptions &options, Command &command);

} // namespace brindle
