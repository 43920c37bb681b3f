#include "cli/RenameCommand.h"

#include "base/BlockOn.h"
#include "base/Error.h"
#include "base/Text.h"
#include "base/VisibleText.h"
#include "cli/Acting.h"
#include "efi/EraseFlow.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>
#include <string>
#include <utility>

namespace brindle {

namespace {

/// The file system may have taken another name than the one that was wished: what is read from it is told.
void tellName(const std::string &identifier, const std::optional<std::string> &name)
{
    if (name && !name->empty())
        fmt::print("{} is named {}\n", identifier, visibleText(*name));
    else
        fmt::print("{} has no name\n", identifier);
}

ExitStatus rename(Platform platform, const std::string &identifier, const std::string &name)
{
    Assembly assembly(std::move(platform));
    DiskManager &manager = assembly.diskManager();
    RowActions row = rowActionsOf(assembly);
    blockOn(manager.startScan(false));

    if (const auto found = findEFIPartition(manager, identifier)) {
        blockOn(row.renameEFI(found->disk, found->partition, name));
        const auto now = findEFIPartition(manager, identifier);
        tellName(identifier, now ? now->partition.volumeName : name);
        return ExitStatus::done;
    }
    const auto disk = findDisk(manager, identifier);
    if (!disk)
        return tellNotFound("EFI partition or disk", identifier);
    if (!EraseFlow::partitionTarget(*disk))
        throw Error("Rename", 1, fmt::format("{} has no single volume to be renamed", identifier));
    blockOn(row.renameVolume(*disk, name));
    const auto now = findDisk(manager, identifier);
    tellName(fmt::format("The volume of {}", identifier), now ? now->volumeName : name);
    return ExitStatus::done;
}

} // namespace

void addRenameCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = app.add_subcommand("rename", "Rename an EFI partition, or the volume of a disk");
    const auto identifier = std::make_shared<std::string>();
    const auto name = std::make_shared<std::string>();
    const auto acting = std::make_shared<ActingOptions>();
    subcommand->add_option("TARGET", *identifier, "The identifier of the partition or disk, such as disk0s1")
        ->required()
        ->type_name("");
    subcommand->add_option("NAME", *name, "The new name; write -- before one that begins with a hyphen")
        ->required()
        ->type_name("");
    addPasswordOption(*subcommand, *acting);
    subcommand->callback([&options, &command, identifier, name, acting] {
        const std::string newName(trimmedWithNewlines(*name));
        if (newName.empty())
            throw CLI::ValidationError("NAME", "must not be empty");
        command = [&options, identifier, newName, acting] {
            const auto run = [&](Platform platform) { return rename(std::move(platform), *identifier, newName); };
            return onMachine(options, run, *acting);
        };
    });
}

} // namespace brindle
