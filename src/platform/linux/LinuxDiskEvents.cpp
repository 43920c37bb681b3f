#include "platform/linux/LinuxDiskEvents.h"

#include "base/Error.h"
#include "platform/linux/MountObserver.h"
#include "platform/linux/UdevDiskSession.h"

#include <utility>

namespace brindle {

std::unique_ptr<DiskEvents::Observation> LinuxDiskEvents::observeVolumes(VolumeChange which, VolumeChanged callback)
{
    return std::make_unique<MountObserver>(which, std::move(callback));
}

std::unique_ptr<DiskEvents::Observation> LinuxDiskEvents::createSession(DiskChanged callback)
{
    try {
        return std::make_unique<UdevDiskSession>(isListedDisk, std::move(callback));
    } catch (const Error &) {
        return nullptr;
    }
}

} // namespace brindle
