#pragma once

#include "assembly/Platform.h"
#include "cli/ExitStatus.h"

#include <functional>
#include <string>
#include <string_view>

namespace CLI {
class App;
}

namespace brindle {

/// What the command line says for every command.
struct GlobalOptions {
    bool verbose = false;
    bool demo = false;
    bool demoAsksForPassword = false; ///< The demo machine's password isn't stored.
};

/// What the command line says for commands that act on disks.
struct ActingOptions {
    bool passwordFromInput = false; ///< The password stands on standard input; nothing is stored, nothing asked.
    bool opensFolders = false;      ///< The desktop shows what was mounted.
    bool notifies = false;          ///< The desktop tells how it ended.
    bool endsSoon = true;           ///< Nobody can answer to what the desktop has told.
    bool mountsMarkedDisks = false; ///< When they are plugged in.
};

/// What the command line asks for: set by the callback of the subcommand that was named, run once all was read.
using Command = std::function<ExitStatus()>;

/// Runs \a run on this machine, or on a demo machine, which is gone afterwards, also after an interruption. What has to
/// be asked is asked in the terminal.
ExitStatus onMachine(const GlobalOptions &options, const std::function<ExitStatus(Platform)> &run,
                     const ActingOptions &acting = {});

/// Adds `--password-stdin` to a command that needs the administrator's password.
void addPasswordOption(CLI::App &subcommand, ActingOptions &acting);

/// Adds `--notify` to a command that mounts or unmounts, which its help calls \a action.
void addNotifyOption(CLI::App &subcommand, ActingOptions &acting, std::string_view action = "it");

/// Adds `--open` to a command that mounts what its help calls \a mounted.
void addOpenOption(CLI::App &subcommand, ActingOptions &acting, std::string_view mounted = "what was mounted");

/// Writes out what was set; throws an Error that names the setting \a key where it can't be kept.
void keepSetting(UserDefaults &defaults, const char *key);

} // namespace brindle
