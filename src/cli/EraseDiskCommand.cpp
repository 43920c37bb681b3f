#include "cli/EraseDiskCommand.h"

#include "cli/EraseRun.h"

#include <CLI/CLI.hpp>

namespace brindle {

namespace {

ExitStatus eraseWholeDisk(Assembly &assembly, const EraseArguments &arguments)
{
    const auto disk = findErasableDisk(assembly, arguments.identifier);
    return disk ? eraseDisk(assembly, *disk, EraseScope::wholeDisk, arguments) : ExitStatus::notFound;
}

} // namespace

void addEraseDiskCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = app.add_subcommand(
        "erase-disk", "Erase a whole disk: a new partition map with an EFI partition and one volume");
    const auto arguments = addErase(*subcommand, options, command, eraseWholeDisk);
    subcommand->add_option("DISK", arguments->identifier, "The disk, such as disk2")->required()->type_name("");
    addFormatOption(*subcommand, *arguments);
}

} // namespace brindle
