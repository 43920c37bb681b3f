#include "cli/SaveCommand.h"

#include "base/BlockOn.h"
#include "cli/Acting.h"
#include "cli/CopyProgress.h"
#include "cli/GivenPlace.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <utility>

namespace brindle {

namespace {

ExitStatus save(Platform platform, const std::string &identifier, const std::string &place)
{
    platform.dialogs = std::make_unique<GivenPlace>(place, std::move(platform.dialogs));
    Assembly assembly(std::move(platform));
    blockOn(assembly.diskManager().startScan(false));
    const auto found = findEFIPartition(assembly.diskManager(), identifier);
    if (!found)
        return tellNotFound("EFI partition", identifier);

    const CopyProgress progress(assembly.efiCopyManager());
    blockOn(assembly.efiCopyManager().copyEFIToLocation(found->disk, found->partition));
    progress.requireSuccess();
    return ExitStatus::done;
}

} // namespace

void addSaveCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = app.add_subcommand("save", "Copy the EFI folder of an EFI partition to a folder");
    const auto identifier = std::make_shared<std::string>();
    const auto place = std::make_shared<std::string>();
    subcommand->add_option("PARTITION", *identifier, "The mounted EFI partition, such as disk0s1")
        ->required()
        ->type_name("");
    subcommand->add_option("PATH", *place, "The folder to be made")->required()->type_name("");
    subcommand->callback([&options, &command, identifier, place] {
        command = [&options, identifier, place] {
            return onMachine(options,
                             [&](Platform platform) { return save(std::move(platform), *identifier, *place); });
        };
    });
}

} // namespace brindle
