#include "cli/UnmountCommand.h"

#include "base/BlockOn.h"
#include "base/Error.h"
#include "cli/Acting.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <string>

namespace brindle {

namespace {

void unmount(Assembly &assembly, const FoundPartition &found)
{
    const std::string &identifier = found.partition.identifier;
    RowActions row = rowActionsOf(assembly);
    blockOn(row.unmount(found.disk, found.partition));
    // A name that holds the tool's words for an unmounted volume lets a mounted one pass for it.
    const auto now = findEFIPartition(assembly.diskManager(), identifier);
    if (now && now->partition.mountPoint)
        throw Error("Unmount", 1, fmt::format("{} is still mounted at {}", identifier, *now->partition.mountPoint));
    fmt::print("{} is not mounted\n", identifier);
}

} // namespace

void addUnmountCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = app.add_subcommand("unmount", "Unmount an EFI partition, by force where it is busy");
    addEFIPartitionAction(*subcommand, options, command, unmount);
}

} // namespace brindle
