#include "udisks/UDisksEject.h"

#include "udisks/UDisks.h"

namespace brindle::tools {

std::string udisksEject(const std::string &busAddress, const std::string &device,
                        const std::vector<std::string> &mounted, std::chrono::milliseconds limit)
{
    constexpr const char *kDriveInterface = "org.freedesktop.UDisks2.Drive";
    const UDisks udisks(busAddress, limit);
    for (const std::string &volume : mounted) {
        std::string refusal = udisks.call(UDisks::block(volume), "org.freedesktop.UDisks2.Filesystem", "Unmount");
        if (!refusal.empty())
            return refusal;
    }
    if (device.starts_with("loop"))
        return udisks.call(UDisks::block(device), "org.freedesktop.UDisks2.Loop", "Delete");
    const auto drive = udisks.path(UDisks::block(device), kBlockInterface, "Drive");
    if (!drive)
        return "UDisks2 does not know the disk";
    if (udisks.flag(*drive, kDriveInterface, "Ejectable").value_or(false))
        return udisks.call(*drive, kDriveInterface, "Eject");
    return udisks.flag(*drive, kDriveInterface, "CanPowerOff").value_or(false)
               ? udisks.call(*drive, kDriveInterface, "PowerOff")
               : std::string();
}

} // namespace brindle::tools
