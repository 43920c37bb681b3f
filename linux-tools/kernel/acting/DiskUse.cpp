#include "kernel/acting/DiskUse.h"

#include "acting/ActionWords.h"
#include "text/LineReading.h"
#include "text/Words.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace brindle::tools {
namespace {

constexpr std::array<std::string_view, 3> kPassingPlaces{"/run/media/", "/media/", "/mnt/"};

/// The devices that pages are swapped to, of the text of /proc/swaps; files lie on a mount, which is told as such.
std::vector<const BlockDevice *> swapDevices(const BlockDevices &devices, std::string_view swaps)
{
    std::vector<const BlockDevice *> found;
    (void)takeLine(swaps); // The heading.
    while (!swaps.empty()) {
        std::string_view line = takeLine(swaps);
        if (const BlockDevice *device = devices.byNode(takeField(line, ' ')))
            found.push_back(device);
    }
    return found;
}

} // namespace

std::string holderOf(const LiveDevice &live, std::string_view swaps)
{
    const BlockDevices &devices = live.devices();
    const auto swapping = swapDevices(devices, swaps);
    for (const BlockDevice *part : live.parts()) {
        const auto holders = namesIn(devices.roots().sys + part->path + "/holders");
        if (!holders.empty())
            return inUse(live.identifierOf(*part), holders.front());
        if (std::ranges::find(swapping, part) != swapping.end())
            return inUse(live.identifierOf(*part), "the system's swap space");
    }
    return {};
}

bool isPassing(std::string_view mountPoint)
{
    return std::ranges::any_of(kPassingPlaces, [&](std::string_view place) { return mountPoint.starts_with(place); });
}

bool isSystemRoot(const CarriedMount &mount)
{
    return mount.entry->mountPoint == "/";
}

void requireUnused(const LiveDevice &live, std::string_view swaps)
{
    const std::string holder = holderOf(live, swaps);
    if (!holder.empty())
        throw eraseRefusal(holder);
    for (const CarriedMount &mount : live.mounts()) {
        if (!mount.isOwn || !isPassing(mount.entry->mountPoint))
            throw eraseRefusal(fmt::format("{} carries what is mounted at {}", live.identifierOf(*mount.carrier),
                                           printable(mount.entry->mountPoint)));
    }
}

} // namespace brindle::tools
