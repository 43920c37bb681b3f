#include "cli/AutoMountCommand.h"

#include "assembly/Assembly.h"
#include "base/BlockOn.h"
#include "base/DefaultsKeys.h"
#include "base/VisibleText.h"
#include "cli/Acting.h"
#include "cli/DisplayText.h"
#include "cli/Terminal.h"
#include "state/AutoMountMarks.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace brindle {

namespace {

constexpr const char *kDomain = "AutoMount";
constexpr std::string_view kUUIDHeading = "UUID";

std::string jsonOf(const AutoMountMarks &marks)
{
    using Json = nlohmann::ordered_json;
    Json list = Json::array();
    for (const auto &[mediaUUID, name] : marks)
        list.push_back({{"mediaUUID", mediaUUID}, {"name", name}});
    return list.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

std::string tableOf(const AutoMountMarks &marks, const Terminal &terminal)
{
    if (marks.empty())
        return "No disks configured for auto-mount.\n";
    std::size_t width = kUUIDHeading.size();
    for (const auto &[mediaUUID, name] : marks)
        width = std::max(width, displayWidth(visibleText(mediaUUID)));
    std::string table = styled(fmt::format("{:<{}}  NAME", kUUIDHeading, width), Style::heading, terminal) + '\n';
    for (const auto &[mediaUUID, name] : marks) {
        const std::string uuid = visibleText(mediaUUID);
        const std::string line =
            fmt::format("{}{}  {}", uuid, std::string(width - displayWidth(uuid), ' '), visibleText(name));
        table += (terminal.width == 0 ? line : elided(line, terminal.width)) + '\n';
    }
    return table;
}

ExitStatus list(Platform platform, bool asJson)
{
    const AutoMountMarks marks = autoMountMarks(*platform.userDefaults);
    fmt::print("{}", asJson ? jsonOf(marks) : tableOf(marks, Terminal::ofStandardOutput()));
    return ExitStatus::done;
}

/// Stores \a marks, so that they outlive this process.
void keep(UserDefaults &defaults, const AutoMountMarks &marks)
{
    setAutoMountMarks(defaults, marks);
    keepSetting(defaults, DefaultsKeys::kAutoMountDiskUUIDs);
}

/// Scans for the disk.
std::optional<PhysicalDisk> scannedDisk(Assembly &assembly, const std::string &identifier)
{
    blockOn(assembly.diskManager().startScan(false));
    return findDisk(assembly.diskManager(), identifier);
}

ExitStatus add(Platform platform, const std::string &identifier)
{
    Assembly assembly(std::move(platform));
    const std::optional<PhysicalDisk> disk = scannedDisk(assembly, identifier);
    if (!disk)
        return tellNotFound("disk", identifier);
    if (!disk->mediaUUID)
        throw Error(kDomain, 1, fmt::format("{} has no UUID to be known by.", identifier));
    AutoMountMarks marks = autoMountMarks(assembly.userDefaults());
    marks[*disk->mediaUUID] = disk->name;
    keep(assembly.userDefaults(), marks);
    return ExitStatus::done;
}

ExitStatus remove(Platform platform, const std::string &identifierOrUUID)
{
    Assembly assembly(std::move(platform));
    AutoMountMarks marks = autoMountMarks(assembly.userDefaults());
    if (marks.erase(identifierOrUUID) == 0) {
        const std::optional<PhysicalDisk> disk = scannedDisk(assembly, identifierOrUUID);
        if (!disk)
            return tellNotFound("disk", identifierOrUUID);
        marks = autoMountMarks(assembly.userDefaults());
        if (!disk->mediaUUID || marks.erase(*disk->mediaUUID) == 0)
            throw Error(kDomain, 2, fmt::format("{} is not marked.", identifierOrUUID));
    }
    keep(assembly.userDefaults(), marks);
    return ExitStatus::done;
}

void addList(CLI::App &automount, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = automount.add_subcommand("list", "Tell the marked disks");
    const auto asJson = std::make_shared<bool>(false);
    subcommand->add_flag("--json", *asJson, "Print a JSON array of objects and nothing else");
    subcommand->callback([&options, &command, asJson] {
        command = [&options, asJson] {
            return onMachine(options, [&](Platform platform) { return list(std::move(platform), *asJson); });
        };
    });
}

using Change = ExitStatus (*)(Platform, const std::string &);

void addChange(CLI::App *subcommand, const char *diskHelp, Change change, const GlobalOptions &options,
               Command &command)
{
    const auto disk = std::make_shared<std::string>();
    subcommand->add_option("DISK", *disk, diskHelp)->required()->type_name("");
    subcommand->callback([&options, &command, disk, change] {
        command = [&options, disk, change] {
            return onMachine(options, [&](Platform platform) { return change(std::move(platform), *disk); });
        };
    });
}

} // namespace

void addAutoMountCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *automount =
        app.add_subcommand("automount", "Tell or choose the disks that are mounted by themselves when plugged in");
    automount->require_subcommand(1);
    addList(*automount, options, command);
    addChange(automount->add_subcommand("add", "Mark a disk"), "The disk's identifier, such as disk2", add, options,
              command);
    addChange(automount->add_subcommand("remove", "Unmark a disk"),
              "The disk's identifier, such as disk2, or its UUID where it isn't there", remove, options, command);
}

} // namespace brindle
