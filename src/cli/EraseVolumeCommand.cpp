#include "cli/EraseVolumeCommand.h"

#include "base/Error.h"
#include "cli/EraseRun.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace brindle {

namespace {

ExitStatus eraseVolume(Assembly &assembly, const EraseArguments &arguments)
{
    const auto disk = findErasableDisk(assembly, arguments.identifier);
    if (!disk)
        return ExitStatus::notFound;
    if (!EraseFlow::partitionTarget(*disk))
        throw Error("Erase", 1, fmt::format("{} has no volume that can be erased alone", arguments.identifier));
    return eraseDisk(assembly, *disk, EraseScope::partition, arguments);
}

} // namespace

void addEraseVolumeCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = app.add_subcommand("erase-volume", "Erase the volume of a disk and format it anew");
    const auto arguments = addErase(*subcommand, options, command, eraseVolume);
    subcommand->add_option("DISK", arguments->identifier, "The disk, such as disk2")->required()->type_name("");
    addFormatOption(*subcommand, *arguments);
}

} // namespace brindle
