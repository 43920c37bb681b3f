#include "cli/EjectCommand.h"

#include "base/BlockOn.h"
#include "base/VisibleText.h"
#include "cli/Acting.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>
#include <string>
#include <utility>

namespace brindle {

namespace {

ExitStatus eject(Platform platform, const std::string &identifier)
{
    Assembly assembly(std::move(platform));
    blockOn(assembly.diskManager().startScan(false));
    const auto disk = findDisk(assembly.diskManager(), identifier);
    if (!disk)
        return tellNotFound("disk", identifier);
    requireRemovable(*disk, "ejected");
    RowActions row = rowActionsOf(assembly);
    const std::string output = blockOn(row.eject(*disk));
    fmt::print("{}\n", visibleLines(output));
    return ExitStatus::done;
}

} // namespace

void addEjectCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = app.add_subcommand("eject", "Unmount all volumes of a disk and let it go");
    const auto identifier = std::make_shared<std::string>();
    subcommand->add_option("DISK", *identifier, "The disk's identifier, such as disk2")->required()->type_name("");
    subcommand->callback([&options, &command, identifier] {
        command = [&options, identifier] {
            return onMachine(options, [&](Platform platform) { return eject(std::move(platform), *identifier); });
        };
    });
}

} // namespace brindle
