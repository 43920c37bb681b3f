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
/// kernel's own while udevd doesn't run. When the kernel had to drop events, all disks are compared.
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

    struct Monitor {
        std::unique_ptr<udev_monitor, Release> socket;
        std::unique_ptr<QSocketNotifier> notifier;
    };

    [[nodiscard]] Monitor openMonitor(const char *source) const;
    void listen(Monitor &monitor, bool (*counts)());
    void receive(udev_monitor *socket, bool counts);
    void compare(const std::string &sysPath, std::optional<UdevDisk> now);
    void compareAll();
    [[nodiscard]] std::optional<UdevDisk> readDisk(const std::string &sysPath) const;
    [[nodiscard]] Disks readAllDisks() const;

    IsListed m_isListed;
    DiskEvents::DiskChanged m_callback;
    std::unique_ptr<udev, Release> m_udev;
    Disks m_disks;
    Monitor m_udevMonitor;
    Monitor m_kernelMonitor;
};

} // namespace brindle
