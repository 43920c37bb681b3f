#pragma once

#include "assembly/Assembly.h"
#include "cli/TerminalDialogs.h"
#include "platform/Scheduler.h"

namespace brindle {

/// Ends what runs for a watch, so that no tool outlives it, but lets a mount that has begun end by itself.
///
/// A mount is waited for 10 seconds: standard error says so of one that goes on. The same holds for a scan whose tools
/// don't end when they are asked to, for 2 seconds and in the log.
void endWatch(Assembly &assembly, TerminalDialogs &dialogs, Scheduler &clock);

} // namespace brindle
