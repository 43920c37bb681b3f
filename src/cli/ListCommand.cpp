#include "cli/ListCommand.h"

#include "assembly/Assembly.h"
#include "base/BlockOn.h"
#include "cli/DiskTable.h"
#include "cli/Terminal.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>
#include <string>
#include <utility>

namespace brindle {

namespace {

ExitStatus list(Platform platform, bool asJson)
{
    Assembly assembly(std::move(platform));
    DiskManager &manager = assembly.diskManager();
    blockOn(manager.startScan(false));

    const std::string text = asJson ? encodeDisks(manager.disks(), JSONLayout::Indented) + '\n'
                                    : diskTable(manager.disks(), Terminal::ofStandardOutput());
    fmt::print("{}", text);
    return ExitStatus::done;
}

} // namespace

void addListCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = app.add_subcommand("list", "Tell the machine's disks with their EFI partitions");
    const auto asJson = std::make_shared<bool>(false);
    subcommand->add_flag("--json", *asJson, "Print a JSON array of disk objects and nothing else");
    subcommand->callback([&options, &command, asJson] {
        command = [&options, asJson] {
            return onMachine(options, [&](Platform platform) { return list(std::move(platform), *asJson); });
        };
    });
}

} // namespace brindle
