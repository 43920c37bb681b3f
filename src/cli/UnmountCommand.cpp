#include "cli/UnmountCommand.h"

#include "base/BlockOn.h"
#include "cli/Acting.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>
#include <string>
#include <utility>

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
    const auto identifier = std::make_shared<std::string>();
    const auto acting = std::make_shared<ActingOptions>();
    subcommand->add_option("PARTITION", *identifier, "The partition's identifier, such as disk0s1")
        ->required()
        ->type_name("");
    addPasswordOption(*subcommand, *acting);
    addNotifyOption(*subcommand, *acting);
    subcommand->callback([&options, &command, identifier, acting] {
        command = [&options, identifier, acting] {
            const auto run = [&](Platform platform) {
                return onEFIPartition(std::move(platform), *identifier, unmount);
            };
            return onMachine(options, run, *acting);
        };
    });
}

} // namespace brindle
