#include "cli/InfoCommand.h"

#include "assembly/Assembly.h"
#include "base/BlockOn.h"
#include "base/Text.h"
#include "base/VisibleText.h"
#include "cli/Acting.h"
#include "detectors/DiskDetails.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>
#include <string>
#include <utility>

namespace brindle {

namespace {

ExitStatus printInfo(Platform platform, const std::string &identifier)
{
    Assembly assembly(std::move(platform));
    blockOn(assembly.diskManager().startScan(false));

    const auto disk = findDisk(assembly.diskManager(), identifier);
    if (!disk)
        return tellNotFound("disk", identifier);
    const std::string details = diskDetailsText(*disk);
    for (const std::string_view line : Lines(details))
        fmt::print("{}\n", visibleText(line));
    return ExitStatus::done;
}

} // namespace

void addInfoCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = app.add_subcommand("info", "Tell the details of a disk");
    const auto identifier = std::make_shared<std::string>();
    subcommand->add_option("DISK", *identifier, "The disk's identifier, such as disk0")->required()->type_name("");
    subcommand->callback([&options, &command, identifier] {
        command = [&options, identifier] {
            return onMachine(options, [&](Platform platform) { return printInfo(std::move(platform), *identifier); });
        };
    });
}

} // namespace brindle
