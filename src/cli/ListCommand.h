#pragma once

#include "assembly/Platform.h"
#include "cli/ExitStatus.h"

namespace brindle {

struct ListOptions {
    bool asJson = false;
};

/// Scans once and prints the visible disks in display order: as a table, or as a JSON array of disk objects in the
/// persisted form. A scan never fails: whatever the tools do, what is left is printed.
ExitStatus listCommand(Platform platform, const ListOptions &options);

} // namespace brindle
