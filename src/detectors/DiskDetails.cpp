#include "detectors/DiskDetails.h"

#include <fmt/format.h>

#include <string_view>

namespace brindle {

namespace {

struct HealthText {
    std::string_view wording;
    std::string_view note; ///< May be empty.
};

HealthText healthText(SMARTStatus status)
{
    switch (status) {
    case SMARTStatus::verified:
        return {"Verified (Healthy)", ""};
    case SMARTStatus::failing:
        return {"Failing — data loss risk", "⚠️ This disk is reporting SMART failures. Back up its data immediately "
                                            "and consider replacing it."};
    case SMARTStatus::notSupported:
        return {"Not Supported", "This disk (or its enclosure/controller) does not report SMART health data to macOS. "
                                 "This is common for many external USB enclosures."};
    case SMARTStatus::unknown:
        return {"Unknown", "SMART status could not be determined for this disk."};
    }
    return {};
}

} // namespace

std::string diskDetailsText(const PhysicalDisk &disk)
{
    const HealthText health = healthText(disk.smartStatus);
    std::string text = fmt::format("SMART Status: {}\n"
                                   "Media Type: {}\n"
                                   "TRIM Support: {}\n"
                                   "Bus / Protocol: {}\n"
                                   "Size: {}\n"
                                   "Content: {}\n",
                                   health.wording, disk.isSolidState ? "Solid State (SSD)" : "Rotational (HDD)",
                                   disk.trimSupported ? "Yes" : "No",
                                   disk.busProtocol.empty() ? "Unknown" : disk.busProtocol, disk.size, disk.fileSystem);
    if (disk.volumeName && !disk.volumeName->empty())
        text += fmt::format("Volume: {}\n", *disk.volumeName);
    text += fmt::format("Identifier: {}", disk.identifier);
    if (!health.note.empty())
        text += fmt::format("\n\n{}", health.note);
    return text;
}

} // namespace brindle
