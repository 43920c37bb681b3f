#include "cli/EraseEFICommand.h"

#include "base/Error.h"
#include "cli/Acting.h"
#include "cli/EraseRun.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace brindle {

namespace {

ExitStatus eraseEFI(Assembly &assembly, const EraseArguments &arguments)
{
    const auto found = findEFIPartition(assembly.diskManager(), arguments.identifier);
    if (!found)
        return tellNotFound("EFI partition", arguments.identifier);
    if (!RowActions::canEraseEFI(found->disk))
        throw Error(
            "Erase", 1,
            fmt::format("{} lies on the disk that the system runs from, which is not erased", arguments.identifier));
    assembly.eraseFlow().openForEFIPartition(found->disk, found->partition, {});
    return confirmAndErase(assembly, arguments);
}

} // namespace

void addEraseEFICommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = app.add_subcommand("erase-efi", "Erase an EFI partition and format it as FAT32");
    const auto arguments = addErase(*subcommand, options, command, eraseEFI);
    subcommand->add_option("PARTITION", arguments->identifier, "The EFI partition, such as disk2s1")
        ->required()
        ->type_name("");
}

} // namespace brindle
