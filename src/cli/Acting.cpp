#include "cli/Acting.h"

#include "base/BlockOn.h"
#include "base/Error.h"
#include "base/Log.h"
#include "base/VisibleText.h"
#include "cli/Terminal.h"
#include "records/FindDisk.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <chrono>
#include <cstdio>
#include <exception>
#include <utility>

namespace brindle {

using namespace std::chrono_literals;

namespace {

// A desktop that doesn't answer holds nobody up for longer.
constexpr std::chrono::milliseconds kPatienceWithTheDesktop = 3s;

/// Scans once and lets \a act on the EFI partition; one that is not there is told.
ExitStatus onEFIPartition(Platform platform, const std::string &identifier, const EFIPartitionAction &act)
{
    Assembly assembly(std::move(platform));
    blockOn(assembly.diskManager().startScan(false));
    const auto found = findEFIPartition(assembly.diskManager(), identifier);
    if (!found)
        return tellNotFound("EFI partition", identifier);
    std::exception_ptr failure;
    try {
        act(assembly, *found);
    } catch (...) {
        failure = std::current_exception();
    }
    awaitNotifications(assembly);
    if (failure)
        std::rethrow_exception(failure);
    return ExitStatus::done;
}

} // namespace

std::optional<FoundPartition> findEFIPartition(const DiskManager &manager, const std::string &identifier)
{
    const PhysicalDisk *const disk = findDiskOfEFIPartition(manager.disks(), identifier);
    return disk ? std::optional(FoundPartition{*disk, *findEFIPartition(*disk, identifier)}) : std::nullopt;
}

std::optional<PhysicalDisk> findDisk(const DiskManager &manager, const std::string &identifier)
{
    const PhysicalDisk *const disk = findDisk(manager.disks(), identifier);
    return disk ? std::optional(*disk) : std::nullopt;
}

RowActions rowActionsOf(Assembly &assembly)
{
    return {RowActions::Row::efiPartition,
            {.diskManager = assembly.diskManager(),
             .efiOperations = assembly.efiOperations(),
             .dialogs = assembly.dialogs(),
             .workspace = assembly.workspace(),
             .userDefaults = assembly.userDefaults()},
            {}};
}

void requireRemovable(const PhysicalDisk &disk, std::string_view treated)
{
    if (RowActions::canEject(disk))
        return;
    const char *what = disk.isBootDisk ? "the disk that the system runs from" : "a built-in disk";
    throw Error("Disk", 1, fmt::format("{} is {}, which is not {}", disk.identifier, what, treated));
}

ExitStatus tellNotFound(const std::string &kind, const std::string &identifier)
{
    tell(stderr, fmt::format("brindlectl: There is no {} \"{}\"\n", kind, visibleText(identifier)));
    return ExitStatus::notFound;
}

void awaitNotifications(Assembly &assembly)
{
    try {
        blockOn(assembly.notificationManager().allSent(), kPatienceWithTheDesktop);
    } catch (const Error &error) {
        Log::line("⚠️ A notification was not taken in time: {}", error.what());
    }
}

std::shared_ptr<ActingOptions> addEFIPartitionAction(CLI::App &subcommand, const GlobalOptions &options,
                                                     Command &command, EFIPartitionAction act)
{
    const auto identifier = std::make_shared<std::string>();
    auto acting = std::make_shared<ActingOptions>();
    subcommand.add_option("PARTITION", *identifier, "The partition's identifier, such as disk0s1")
        ->required()
        ->type_name("");
    addPasswordOption(subcommand, *acting);
    addNotifyOption(subcommand, *acting);
    subcommand.callback([&options, &command, identifier, acting, act = std::move(act)] {
        command = [&options, identifier, acting, act] {
            const auto run = [&](Platform platform) { return onEFIPartition(std::move(platform), *identifier, act); };
            return onMachine(options, run, *acting);
        };
    });
    return acting;
}

} // namespace brindle
