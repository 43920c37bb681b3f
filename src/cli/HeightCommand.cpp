#include "cli/HeightCommand.h"

#include "assembly/Assembly.h"
#include "base/BlockOn.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace brindle {

namespace {

struct HeightOptions {
    bool asJson = false;
    std::optional<std::set<std::string>> expandedDisks;
};

ExitStatus printHeight(Platform platform, const HeightOptions &wanted)
{
    Assembly assembly(std::move(platform));
    const DiskManager &manager = assembly.diskManager();
    blockOn(assembly.diskManager().startScan(false));

    const double height = assembly.viewHeightCalculator().contentHeight(
        manager.disks().size(), wanted.expandedDisks.value_or(manager.expandedDisks()), manager.disks());
    if (wanted.asJson)
        fmt::print("{{\"height\": {}}}\n", height);
    else
        fmt::print("{}\n", height);
    return ExitStatus::done;
}

} // namespace

void addHeightCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = app.add_subcommand("height", "Tell how high the list of disks is, in points");
    const auto wanted = std::make_shared<HeightOptions>();
    subcommand->add_flag("--json", wanted->asJson, "Print a JSON object and nothing else");
    subcommand
        ->add_option_function<std::vector<std::string>>(
            "--expand",
            [wanted](const std::vector<std::string> &disks) {
                wanted->expandedDisks.emplace(disks.begin(), disks.end());
            },
            "The disks whose rows are open, in place of those left open")
        ->delimiter(',')
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->type_name("DISK,...");
    subcommand->callback([&options, &command, wanted] {
        command = [&options, wanted] {
            return onMachine(options, [&](Platform platform) { return printHeight(std::move(platform), *wanted); });
        };
    });
}

} // namespace brindle
