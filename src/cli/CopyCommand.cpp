#include "cli/CopyCommand.h"

#include "base/BlockOn.h"
#include "base/VisibleText.h"
#include "cli/Acting.h"
#include "cli/CopyProgress.h"
#include "cli/GivenPlace.h"
#include "cli/Terminal.h"
#include "views/EFIDestinationSelection.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <unistd.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace brindle {

namespace {

struct CopyArguments {
    std::string source;
    std::string destination;
    std::optional<std::string> backup;
    bool overwrite = false;
};

/// What is shown and chosen where the destination has an EFI folder.
Alert confirmationAlert(const EFIDestinationSelection &dialog)
{
    Alert alert{.messageText = std::string(EFIDestinationSelection::kConfirmationTitle),
                .informativeText = fmt::format("{} {}", EFIDestinationSelection::kConfirmationText,
                                               EFIDestinationSelection::kConfirmationQuestion),
                .buttons = {}};
    if (const auto warning = dialog.confirmationWarning())
        alert.informativeText += fmt::format("\n{}: {}", warning->title, warning->message);
    for (const OptionButton &option : dialog.confirmationOptions())
        alert.buttons.emplace_back(option.title);
    return alert;
}

void choose(Assembly &assembly, const CopyArguments &arguments)
{
    EFICopyManager &manager = assembly.efiCopyManager();
    const EFICopyManager::ConfirmationData data = *manager.confirmationData();
    if (arguments.backup) {
        data.onBackup();
        return;
    }
    const EFIDestinationSelection dialog(data.sourceDisk, data.sourceEFI, {}, {}, {}, manager);
    const std::size_t choice = blockOn(assembly.dialogs().alert(confirmationAlert(dialog)));
    if (manager.showConfirmationDialog()) // it may have been interrupted meanwhile
        dialog.confirmationOptions().at(choice).action();
}

ExitStatus carryOut(Assembly &assembly, const CopyArguments &arguments, const FoundPartition &source,
                    const FoundPartition &destination)
{
    EFICopyManager &manager = assembly.efiCopyManager();
    CopyProgress progress(manager);
    blockOn(
        manager.copyEFI(source.disk, source.partition, destination.disk, destination.partition, arguments.overwrite));
    if (manager.showConfirmationDialog()) {
        if (!arguments.backup && !isatty(STDIN_FILENO)) {
            progress.clearBar();
            tell(stderr, fmt::format("brindlectl: {} has an EFI folder: say --backup PATH or --overwrite\n",
                                     visibleText(arguments.destination)));
            return ExitStatus::wrongUsage;
        }
        choose(assembly, arguments);
        progress.waitForEnd();
    } else if (arguments.backup) {
        tell(stderr, fmt::format("brindlectl: {} had no EFI folder: there was nothing to back up\n",
                                 visibleText(arguments.destination)));
    }
    progress.requireSuccess();
    return ExitStatus::done;
}

ExitStatus copy(Platform platform, const CopyArguments &arguments)
{
    if (arguments.backup)
        platform.dialogs = std::make_unique<GivenPlace>(*arguments.backup, std::move(platform.dialogs));
    Assembly assembly(std::move(platform));
    blockOn(assembly.diskManager().startScan(false));
    const auto source = findEFIPartition(assembly.diskManager(), arguments.source);
    if (!source)
        return tellNotFound("EFI partition", arguments.source);
    const auto destination = findEFIPartition(assembly.diskManager(), arguments.destination);
    if (!destination)
        return tellNotFound("EFI partition", arguments.destination);
    return carryOut(assembly, arguments, *source, *destination);
}

} // namespace

void addCopyCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = app.add_subcommand("copy", "Copy the EFI folder of an EFI partition to another one");
    const auto arguments = std::make_shared<CopyArguments>();
    subcommand->add_option("FROM", arguments->source, "The mounted EFI partition to copy from, such as disk0s1")
        ->required()
        ->type_name("");
    subcommand->add_option("TO", arguments->destination, "The mounted EFI partition to copy to")
        ->required()
        ->type_name("");
    CLI::Option *backup =
        subcommand->add_option("--backup", arguments->backup, "Save the EFI folder of TO as PATH, which must not exist")
            ->type_name("PATH");
    subcommand->add_flag("--overwrite", arguments->overwrite, "Delete the EFI folder of TO without a backup")
        ->excludes(backup);
    subcommand->callback([&options, &command, arguments] {
        command = [&options, arguments] {
            return onMachine(options, [&](Platform platform) { return copy(std::move(platform), *arguments); });
        };
    });
}

} // namespace brindle
