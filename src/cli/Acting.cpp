#include "cli/Acting.h"

#include "base/BlockOn.h"
#include "base/Log.h"
#include "base/VisibleText.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <utility>

namespace brindle {

using namespace std::chrono_literals;

namespace {

// A desktop that doesn't answer holds nobody up for longer.
constexpr std::chrono::milliseconds kPatienceWithTheDesktop = 3s;

} // namespace

std::optional<FoundPartition> findEFIPartition(const DiskManager &manager, const std::string &identifier)
{
    for (const PhysicalDisk &disk : manager.disks()) {
        const auto partition = std::ranges::find(disk.efiPartitions, identifier, &EFIPartition::identifier);
        if (partition != disk.efiPartitions.end())
            return FoundPartition{disk, *partition};
    }
    return std::nullopt;
}

std::optional<PhysicalDisk> findDisk(const DiskManager &manager, const std::string &identifier)
{
    const auto disk = std::ranges::find(manager.disks(), identifier, &PhysicalDisk::identifier);
    return disk == manager.disks().end() ? std::nullopt : std::optional(*disk);
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

ExitStatus tellNotFound(const std::string &kind, const std::string &identifier)
{
    fmt::print(stderr, "brindlectl: There is no {} \"{}\"\n", kind, visibleText(identifier));
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

ExitStatus onEFIPartition(Platform platform, const std::string &identifier,
                          const std::function<void(Assembly &assembly, const FoundPartition &found)> &act)
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

} // namespace brindle
