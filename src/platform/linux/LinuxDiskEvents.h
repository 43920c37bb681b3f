#pragma once

#include "platform/DiskEvents.h"

namespace brindle {

/// The running kernel's events.
///
/// Volumes: /proc/self/mountinfo, which the kernel marks at each change (compareMountTables()). Disks: udev's events,
/// or the kernel's own while udev doesn't run (UdevDiskSession). Sockets and files that are watched by the event loop
/// alone; all are closed with the observation.
class LinuxDiskEvents : public DiskEvents {
public:
    [[nodiscard]] std::unique_ptr<Observation> observeVolumes(VolumeChange which, VolumeChanged callback) override;

    /// Whole disks alone. Null where no netlink socket can be opened.
    [[nodiscard]] std::unique_ptr<Observation> createSession(DiskChanged callback) override;
};

} // namespace brindle
