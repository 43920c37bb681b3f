#include "udisks/UDisksHealth.h"

#include "udisks/UDisks.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace brindle::tools {
namespace {

constexpr const char *kAta = "org.freedesktop.UDisks2.Drive.Ata";
constexpr const char *kNvme = "org.freedesktop.UDisks2.NVMe.Controller"; // since UDisks 2.10

bool isGrave(std::string_view warning)
{
    return warning != "temperature"; // A hot drive is no failing one.
}

} // namespace

Smart udisksHealth(const std::string &busAddress, const std::string &device, std::chrono::milliseconds limit)
{
    const UDisks udisks(busAddress, limit);
    const auto drive = udisks.path(UDisks::block(device), kBlockInterface, "Drive");
    if (!drive)
        return Smart::notSupported;
    std::optional<bool> isFailing;
    if (udisks.number(*drive, kAta, "SmartUpdated").value_or(0) != 0) { // When it was asked; 0 for never.
        isFailing = udisks.flag(*drive, kAta, "SmartFailing");
    } else if (udisks.number(*drive, kNvme, "SmartUpdated").value_or(0) != 0) {
        if (const auto warnings = udisks.words(*drive, kNvme, "SmartCriticalWarning"))
            isFailing = std::ranges::any_of(*warnings, isGrave);
    }
    if (!isFailing)
        return Smart::notSupported;
    return *isFailing ? Smart::failing : Smart::verified;
}

} // namespace brindle::tools
