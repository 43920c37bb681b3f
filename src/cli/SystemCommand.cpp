#include "cli/SystemCommand.h"

#include "assembly/Assembly.h"
#include "base/BlockOn.h"
#include "cli/DisplayText.h"
#include "cli/Terminal.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

namespace brindle {

namespace {

struct Field {
    const char *key; ///< Of the JSON object.
    const char *label;
    const char *whenAbsent;
    const std::optional<std::string> &(SystemInfoDetector::*value)() const;
};

constexpr std::array kFields{
    Field{"bootDiskIdentifier", "Boot disk", "unknown", &SystemInfoDetector::bootDiskIdentifier},
    Field{"bootloaderDiskIdentifier", "Boot loader disk", "unknown", &SystemInfoDetector::bootloaderDiskIdentifier},
    Field{"openCoreVersion", "OpenCore", "not found", &SystemInfoDetector::openCoreVersion},
    Field{"cloverVersion", "Clover", "not found", &SystemInfoDetector::cloverVersion},
    Field{"bootVolumePath", "Boot volume", "unknown", &SystemInfoDetector::bootVolumePath},
};

std::string jsonOf(const SystemInfoDetector &detector)
{
    auto object = nlohmann::ordered_json::object();
    for (const Field &field : kFields) {
        if (const auto &value = (detector.*field.value)())
            object[field.key] = *value;
    }
    return object.dump(2) + '\n';
}

std::string tableOf(const SystemInfoDetector &detector, const Terminal &terminal)
{
    constexpr int kLabelWidth = 18;
    std::string table;
    for (const Field &field : kFields) {
        const auto &value = (detector.*field.value)();
        const bool isKnown = value && !value->empty();
        const std::string shown = isKnown ? visibleText(*value) : styled(field.whenAbsent, Style::dim, terminal);
        table += fmt::format("{:<{}}{}\n", field.label, kLabelWidth, shown);
    }
    return table;
}

ExitStatus tellSystem(Platform platform, bool asJson)
{
    Assembly assembly(std::move(platform));
    SystemInfoDetector &detector = assembly.systemInfoDetector();
    blockOn(detector.refreshBootInfo());

    const std::string text = asJson ? jsonOf(detector) : tableOf(detector, Terminal::ofStandardOutput());
    std::fwrite(text.data(), 1, text.size(), stdout);
    return ExitStatus::done;
}

} // namespace

void addSystemCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = app.add_subcommand("system", "Tell what the running machine booted from");
    const auto asJson = std::make_shared<bool>(false);
    subcommand->add_flag("--json", *asJson, "Print a JSON object and nothing else");
    subcommand->callback([&options, &command, asJson] {
        command = [&options, asJson] {
            return onMachine(options, [&](Platform platform) { return tellSystem(std::move(platform), *asJson); });
        };
    });
}

} // namespace brindle
