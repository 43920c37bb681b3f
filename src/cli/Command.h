#pragma once

#include "assembly/Platform.h"
#include "cli/ExitStatus.h"

#include <functional>

namespace CLI {
class App;
}

namespace brindle {

/// What the command line says for every command.
struct GlobalOptions {
    bool verbose = false;
    bool demo = false;
};

/// What the command line asks for: set by the callback of the subcommand that was named, run once all was read.
using Command = std::function<ExitStatus()>;

/// Runs \a run on this machine; or on a demo machine, which is gone afterwards, also after an interruption.
ExitStatus onMachine(const GlobalOptions &options, const std::function<ExitStatus(Platform)> &run);

/// Writes out what was set; throws an Error that names the setting \a key where it can't be kept.
void keepSetting(UserDefaults &defaults, const char *key);

} // namespace brindle
