#include "cli/MountCommand.h"

#include "base/BlockOn.h"
#include "base/VisibleText.h"
#include "cli/Acting.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>
#include <string>
#include <utility>

namespace brindle {

namespace {

void mount(Assembly &assembly, const FoundPartition &found)
{
    const std::string &identifier = found.partition.identifier;
    RowActions row = rowActionsOf(assembly);
    blockOn(row.mount(found.disk, found.partition));
    const auto now = findEFIPartition(assembly.diskManager(), identifier);
    if (now && now->partition.mountPoint)
        fmt::print("{} is mounted at {}\n", identifier, visibleText(*now->partition.mountPoint));
    else
        fmt::print("{} was mounted\n", identifier);
}

} // namespace

void addMountCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = app.add_subcommand("mount", "Mount an EFI partition");
    const auto identifier = std::make_shared<std::string>();
    const auto acting = std::make_shared<ActingOptions>();
    subcommand->add_option("PARTITION", *identifier, "The partition's identifier, such as disk0s1")
        ->required()
        ->type_name("");
    addPasswordOption(*subcommand, *acting);
    addNotifyOption(*subcommand, *acting);
    subcommand->add_flag("--open", acting->opensFolders, "Show the folder, and the config.plist if so set");
    subcommand->callback([&options, &command, identifier, acting] {
        command = [&options, identifier, acting] {
            const auto run = [&](Platform platform) { return onEFIPartition(std::move(platform), *identifier, mount); };
            return onMachine(options, run, *acting);
        };
    });
}

} // namespace brindle
