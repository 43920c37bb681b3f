#include "shell/IconState.h"

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <system_error>

namespace brindle {

namespace {

namespace fs = std::filesystem;

// In the order of the cases.
constexpr auto kColors = std::to_array<std::optional<Color>>({
    std::nullopt,
    Colors::kOpenCore,
    Colors::kClover,
    Colors::kBlue,
    Colors::kGray,
    Colors::kLinuxEFI,
    Colors::kRed,
    Colors::kBlue,
});

// Below the folder EFI of a partition. A folder stands for what lies in it: even an empty one counts.
constexpr std::initializer_list<const char *> kOpenCorePaths{"OC", "BOOT/OpenCore.efi"};
constexpr std::initializer_list<const char *> kCloverPaths{"CLOVER"};
constexpr std::initializer_list<const char *> kWindowsPaths{"Microsoft", "Boot/bootmgfw.efi"};

enum class Finding { openCore, clover, other };

bool holdsAny(const fs::path &folder, std::initializer_list<const char *> paths)
{
    return std::any_of(paths.begin(), paths.end(), [&](const char *path) {
        std::error_code ignored;
        return fs::exists(folder / path, ignored);
    });
}

/// A partition from which Windows starts is not taken for Clover's, even where a folder of it lies there.
Finding findingOn(const std::string &mountPoint)
{
    const fs::path efi = mountPoint + "/EFI";
    if (holdsAny(efi, kOpenCorePaths))
        return Finding::openCore;
    return holdsAny(efi, kCloverPaths) && !holdsAny(efi, kWindowsPaths) ? Finding::clover : Finding::other;
}

IconState stateOfSystem(const PhysicalDisk &disk)
{
    if (disk.hasMacOS)
        return IconState::macOSEFIMounted;
    if (disk.hasWindows)
        return IconState::windowsEFIMounted;
    if (disk.hasLinux)
        return IconState::linuxEFIMounted;
    return disk.hasExFAT ? IconState::exfatEFIMounted : IconState::genericEFIMounted;
}

IconState stateOf(Finding finding, const PhysicalDisk &disk)
{
    switch (finding) {
    case Finding::openCore:
        return IconState::openCoreMounted;
    case Finding::clover:
        return IconState::cloverMounted;
    case Finding::other:
        break;
    }
    return stateOfSystem(disk);
}

} // namespace

std::optional<Color> colorOf(IconState state)
{
    return kColors[static_cast<std::size_t>(state)];
}

IconState iconState(bool hasCompletedInitialScan, const std::vector<PhysicalDisk> &disks)
{
    if (!hasCompletedInitialScan)
        return IconState::defaultState;
    std::optional<IconState> winner;
    for (const PhysicalDisk &disk : disks) {
        for (const EFIPartition &partition : disk.efiPartitions) {
            if (!partition.isMounted || !partition.mountPoint)
                continue;
            const IconState state = stateOf(findingOn(*partition.mountPoint), disk);
            // The cases stand in the order in which one beats another.
            winner = std::min(winner.value_or(state), state);
        }
    }
    return winner.value_or(IconState::defaultState);
}

} // namespace brindle
