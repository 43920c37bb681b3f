#include "cli/RowsCommand.h"

#include "assembly/Assembly.h"
#include "base/BlockOn.h"
#include "cli/DiskRowsText.h"
#include "cli/Terminal.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>
#include <utility>
#include <vector>

namespace brindle {

namespace {

ExitStatus rows(Platform platform, bool asJson)
{
    Assembly assembly(std::move(platform));
    blockOn(assembly.diskManager().startScan(false));

    DiskRowContent row;
    row.readSettings(assembly.userDefaults());
    std::vector<DiskRowContent> shown;
    for (const PhysicalDisk &disk : assembly.diskManager().disks()) {
        row.disk = disk;
        shown.push_back(row);
    }
    fmt::print("{}", asJson ? diskRowsJson(shown) : diskRowsText(shown, Terminal::ofStandardOutput()));
    return ExitStatus::done;
}

} // namespace

void addRowsCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = app.add_subcommand("rows", "Tell what the rows of the disk list show");
    const auto asJson = std::make_shared<bool>(false);
    subcommand->add_flag("--json", *asJson, "Print a JSON array of row objects and nothing else");
    subcommand->callback([&options, &command, asJson] {
        command = [&options, asJson] {
            return onMachine(options, [&](Platform platform) { return rows(std::move(platform), *asJson); });
        };
    });
}

} // namespace brindle
