#include "cli/UnmountCommand.h"

#include "base/BlockOn.h"
#include "cli/Acting.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace brindle {

namespace {

void unmount(Assembly &assembly, const FoundPartition &found)
{
    RowActions row = rowActionsOf(assembly);
    blockOn(row.unmount(found.disk, found.partition));
    fmt::print("{} is not mounted\n", found.partition.identifier);
}

} // namespace

void addUnmountCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = app.add_subcommand("unmount", "Unmount an EFI partition, by force where it is busy");
    addEFIPartitionAction(*subcommand, options, command, unmount);
}

} // namespace brindle
