#include "cli/EraseRun.h"

#include "base/BlockOn.h"
#include "base/Completion.h"
#include "base/Error.h"
#include "base/VisibleText.h"
#include "cli/Acting.h"
#include "cli/Terminal.h"
#include "cli/UnstoppableWork.h"
#include "views/EraseProgress.h"

#include <CLI/CLI.hpp>
#include <QObject>
#include <fmt/format.h>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

namespace brindle {

namespace {

using Stage = EraseOperationManager::Stage;

QCoro::Task<bool> awaited(Completion<bool> completion)
{
    co_return co_await completion;
}

[[noreturn]] void fail(std::string description)
{
    throw Error("Erase", 1, std::move(description));
}

/// Asks for the name until it is right or nobody wants to any more.
void askForName(EraseOperationManager &manager, Dialogs &dialogs)
{
    const EraseProgress view(manager);
    std::string text = manager.warningText();
    while (manager.stage() == Stage::confirming) {
        const TextPrompt prompt{.alert = {.messageText = manager.dialogTitle(),
                                          .informativeText = fmt::format("{}\n{}", text, view.confirmPrompt()),
                                          .buttons = {"Erase", "Cancel"}},
                                .placeholder = "Name"};
        const std::optional<std::string> name = blockOn(dialogs.textPrompt(prompt));
        if (!name)
            fail("Nothing was erased");
        manager.setConfirmInput(*name);
        manager.confirm();
        text = view.mismatchText().value_or("");
    }
}

void waitForEnd(EraseOperationManager &manager)
{
    const Completion<bool> end;
    QObject receiver;
    QObject::connect(&manager, &EraseOperationManager::stageChanged, &receiver, [end] { end.complete(true); });
    blockOn(awaited(end));
}

} // namespace

std::shared_ptr<EraseArguments> addErase(CLI::App &subcommand, const GlobalOptions &options, Command &command,
                                         std::function<ExitStatus(Assembly &, const EraseArguments &)> erase)
{
    auto arguments = std::make_shared<EraseArguments>();
    subcommand
        .add_option("--confirm", arguments->confirmName,
                    "The name that is asked for otherwise, which may be empty; needed without a terminal")
        ->type_name("NAME");
    addPasswordOption(subcommand, arguments->acting);
    subcommand.callback([&options, &command, arguments, erase = std::move(erase)] {
        command = [&options, arguments, erase] {
            const auto run = [&](Platform platform) {
                Assembly assembly(std::move(platform));
                blockOn(assembly.diskManager().startScan(false));
                return erase(assembly, *arguments);
            };
            return onMachine(options, run, arguments->acting);
        };
    });
    return arguments;
}

void addFormatOption(CLI::App &subcommand, EraseArguments &arguments)
{
    std::vector<std::string> formats;
    for (const FormatOption &option : eraseFormatOptions())
        formats.push_back(option.diskutilFormat);
    subcommand.add_option("--format", arguments.format, "The format of the new volume")
        ->required()
        ->type_name("FORMAT")
        ->transform(CLI::IsMember(formats, CLI::ignore_case)); // to the spelling that is looked up
}

std::optional<PhysicalDisk> findErasableDisk(Assembly &assembly, const std::string &identifier)
{
    const auto disk = findDisk(assembly.diskManager(), identifier);
    if (!disk)
        tellNotFound("disk", identifier);
    else
        requireRemovable(*disk, "erased");
    return disk;
}

ExitStatus eraseDisk(Assembly &assembly, const PhysicalDisk &disk, EraseScope scope, const EraseArguments &arguments)
{
    EraseOperationManager &manager = assembly.eraseOperationManager();
    assembly.eraseFlow().openForDisk(disk, {});
    manager.setEraseScope(scope);
    const auto &formats = manager.formatOptions();
    const auto format = std::ranges::find(formats, arguments.format, &FormatOption::diskutilFormat);
    manager.setSelectedFormatIndex(static_cast<std::size_t>(format - formats.begin()));
    return confirmAndErase(assembly, arguments);
}

ExitStatus confirmAndErase(Assembly &assembly, const EraseArguments &arguments)
{
    EraseOperationManager &manager = assembly.eraseOperationManager();
    if (arguments.confirmName) {
        manager.setConfirmInput(*arguments.confirmName);
        manager.confirm();
    } else if (isatty(STDIN_FILENO)) {
        askForName(manager, assembly.dialogs());
    } else {
        tell(stderr, fmt::format("brindlectl: Without a terminal the name must be said: --confirm \"{}\"\n",
                                 visibleText(manager.confirmName())));
        return ExitStatus::wrongUsage;
    }
    if (manager.confirmMismatch()) // with --confirm alone, where nobody is asked again
        fail(fmt::format("That doesn't match \"{}\"; nothing was erased", manager.confirmName()));
    const UnstoppableWork work("An erase can't be stopped"); // it begins as soon as it is waited for
    tell(stdout, visibleText(manager.statusMessage()) + '\n');
    waitForEnd(manager);
    if (manager.stage() == Stage::failed)
        fail(manager.resultMessage());
    fmt::print("{}\n", visibleText(manager.resultMessage()));
    return ExitStatus::done;
}

} // namespace brindle
