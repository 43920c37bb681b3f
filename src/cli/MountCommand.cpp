#include "cli/MountCommand.h"

#include "base/BlockOn.h"
#include "base/VisibleText.h"
#include "cli/Acting.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <string>

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
    const auto acting = addEFIPartitionAction(*subcommand, options, command, mount);
    addOpenOption(*subcommand, *acting);
}

} // namespace brindle
