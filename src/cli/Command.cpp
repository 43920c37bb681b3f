#include "cli/Command.h"

#include "assembly/DemoMachine.h"
#include "cli/Interruption.h"
#include "cli/PasswordInput.h"
#include "cli/TerminalDialogs.h"
#include "platform/NoWorkspace.h"

#include <CLI/CLI.hpp>

#include <optional>
#include <utility>

#include <unistd.h>

namespace brindle {

namespace {

Platform platformWith(PlatformChanges changes, const ActingOptions &acting)
{
    if (acting.passwordFromInput)
        changes.password = readPasswordLine(STDIN_FILENO);
    Platform platform = makePlatform(changes);
    platform.dialogs = std::make_unique<TerminalDialogs>();
    if (!acting.opensFolders)
        platform.workspace = std::make_unique<NoWorkspace>();
    return platform;
}

} // namespace

ExitStatus onMachine(const GlobalOptions &options, const std::function<ExitStatus(Platform)> &run,
                     const ActingOptions &acting)
{
    if (options.demo.empty())
        return run(platformWith(changesOfEnvironment(), acting));
    std::optional<DemoMachine> demo;
    const Interruption interruption([&] { demo.reset(); });
    demo.emplace();
    PlatformChanges changes = demo->platformChanges();
    if (options.demo == "ask")
        changes.password.reset();
    return run(platformWith(std::move(changes), acting));
}

void addPasswordOption(CLI::App &subcommand, ActingOptions &acting)
{
    subcommand.add_flag("--password-stdin", acting.passwordFromInput,
                        "Read the administrator password from the first line of standard input; store nothing");
}

} // namespace brindle
