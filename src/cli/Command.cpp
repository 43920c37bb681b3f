#include "cli/Command.h"

#include "assembly/DemoMachine.h"
#include "assembly/Interruption.h"
#include "base/Error.h"
#include "cli/PasswordInput.h"
#include "cli/TerminalDialogs.h"
#include "platform/NoNotifications.h"
#include "platform/NoWorkspace.h"

#include <CLI/CLI.hpp>

#include <fmt/format.h>

#include <optional>
#include <utility>

#include <unistd.h>

namespace brindle {

namespace {

Platform platformWith(PlatformChanges changes, const ActingOptions &acting)
{
    if (acting.passwordFromInput)
        changes.password = readPasswordLine(STDIN_FILENO);
    changes.endsSoon = acting.endsSoon;
    Platform platform = makePlatform(changes);
    platform.mountsMarkedDisks = acting.mountsMarkedDisks;
    if (!acting.notifies)
        platform.userNotifications = std::make_unique<NoNotifications>();
    platform.dialogs = std::make_unique<TerminalDialogs>();
    if (!acting.opensFolders)
        platform.workspace = std::make_unique<NoWorkspace>();
    return platform;
}

} // namespace

ExitStatus onMachine(const GlobalOptions &options, const std::function<ExitStatus(Platform)> &run,
                     const ActingOptions &acting)
{
    if (!options.demo)
        return run(platformWith(changesOfEnvironment(), acting));
    std::optional<DemoMachine> demo;
    const Interruption interruption([&] { demo.reset(); });
    demo.emplace(options.demoAsksForPassword ? DemoMachine::Password::missing : DemoMachine::Password::stored);
    return run(platformWith(demo->platformChanges(), acting));
}

void addPasswordOption(CLI::App &subcommand, ActingOptions &acting)
{
    subcommand.add_flag("--password-stdin", acting.passwordFromInput,
                        "Read the administrator password from the first line of standard input; store nothing");
}

void addNotifyOption(CLI::App &subcommand, ActingOptions &acting, std::string_view action)
{
    subcommand.add_flag(
        "--notify", acting.notifies,
        fmt::format("Tell how {} ended by the desktop's notifications too, unless ShowNotifications is off", action));
}

void addOpenOption(CLI::App &subcommand, ActingOptions &acting, std::string_view mounted)
{
    subcommand.add_flag("--open", acting.opensFolders,
                        fmt::format("Show the folder of {}, unless AutoOpenFinderOnMount is off, and its config.plist "
                                    "if AutoOpenConfigOnMount is on",
                                    mounted));
}

void keepSetting(UserDefaults &defaults, const char *key)
{
    if (const std::optional<Error> failure = defaults.synchronize())
        throw Error(failure->domain(), failure->code(),
                    fmt::format("{} can't be kept: {}", key, failure->localizedDescription()));
}

} // namespace brindle
