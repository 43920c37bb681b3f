#pragma once

#include "platform/DiskEvents.h"
#include "platform/linux/UdevDisk.h"

#include <QSocketNotifier>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct udev;
struct udev_monitor;

namespace brindle {

/// Tells of whole disks with a medium, by comparing what was known of a disk with what there is at each of its events.
///
/// A disk appears when it is plugged in or gets a medium, and again when its medium or its partition table is another
/// than before; it disappears with its medium or itself. Events are udev's, sent when its rules are done, or the
/// kernel's own where udevd doesn't run. When the kernel had to drop events, all disks are compared.
class UdevDiskSession : public DiskEvents::Observation {
public:
    using IsListed = std::function<bool(std::string_view sysPath)>;

    /// Throws Error where no socket can be opened.
    UdevDiskSession(IsListed isListed, DiskEvents::DiskChanged callback);

private:
    using Disks = std::map<std::string, UdevDisk>; ///< By path in sysfs.

    struct Release {
        void operator()(udev *context) const;
        void operator()(udev_monitor *monitor) const;
    };

    void openMonitor();
    void receive();
    void compare(const std::string &sysPath, std::optional<UdevDisk> now);
    void compareAll();
    [[nodiscard]] std::optional<UdevDisk> readDisk(const std::string &sysPath) const;
    [[nodiscard]] Disks readAllDisks() const;

    IsListed m_isListed;
    DiskEvents::DiskChanged m_callback;
    std::unique_ptr<udev, Release> m_udev;
    std::unique_ptr<udev_monitor, Release> m_monitor;
    Disks m_disks;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace brindle
