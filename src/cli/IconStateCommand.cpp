#include "cli/IconStateCommand.h"

#include "assembly/Assembly.h"
#include "base/BlockOn.h"
#include "shell/IconState.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <utility>

namespace brindle {

namespace {

ExitStatus printIconState(Platform platform)
{
    Assembly assembly(std::move(platform));
    const DiskManager &manager = assembly.diskManager();
    blockOn(assembly.diskManager().startScan(false));

    fmt::print("{}\n", rawValue(iconState(manager.hasCompletedInitialScan(), manager.disks())));
    return ExitStatus::done;
}

} // namespace

void addIconStateCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = app.add_subcommand("icon-state", "Tell the state that the status icon shows");
    subcommand->callback([&options, &command] { command = [&options] { return onMachine(options, printIconState); }; });
}

} // namespace brindle
