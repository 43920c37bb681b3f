#pragma once

#include "assembly/Platform.h"
#include "cli/ExitStatus.h"

#include <functional>
#include <string>

namespace CLI {
class App;
}

namespace brindle {

/// What the command line says for every command.
struct GlobalOptions {
    bool verbose = false;
    std::string demo; ///< Empty, or whether the demo machine's password is "stored" or to "ask" for.
};

/// What the command line says for commands that act on disks.
struct ActingOptions {
    bool passwordFromInput = false; ///< The password stands on standard input; nothing is stored, nothing asked.
    bool opensFolders = false;      ///< The desktop shows what was mounted.
};

/// What the command line asks for: set by the callback of the subcommand that was named, run once all was read.
using Command = std::function<ExitStatus()>;

/// Runs \a run on this machine, or on a demo machine, which is gone afterwards, also after an interruption. What has to
/// be asked is asked in the terminal.
ExitStatus onMachine(const GlobalOptions &options, const std::function<ExitStatus(Platform)> &run,
                     const ActingOptions &acting = {});

/// Adds `--password-stdin` to a command that needs the administrator's password.
void addPasswordOption(CLI::App &subcommand, ActingOptions &acting);

} // namespace brindle
