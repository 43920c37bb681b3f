#include "platform/linux/UdevDiskSession.h"

#include "base/Error.h"

#include <libudev.h>

#include <cerrno>
#include <fstream>
#include <string>
#include <string_view>
#include <utility>

namespace brindle {

namespace {

struct ReleaseUdev {
    void operator()(udev_device *device) const { udev_device_unref(device); }
    void operator()(udev_enumerate *enumeration) const { udev_enumerate_unref(enumeration); }
};
using Device = std::unique_ptr<udev_device, ReleaseUdev>;
using Enumeration = std::unique_ptr<udev_enumerate, ReleaseUdev>;

constexpr const char *kSubsystem = "block";
constexpr const char *kWholeDisk = "disk";

/// Whether udevd holds its socket, by the kernel's table of sockets (proc(5)): one that died leaves the file behind,
/// and one of another network namespace sends nothing here.
bool isUdevRunning()
{
    constexpr std::string_view kControlSocket = " /run/udev/control";
    std::ifstream table("/proc/net/unix");
    for (std::string line; std::getline(table, line);) {
        if (line.ends_with(kControlSocket))
            return true;
    }
    return false;
}

} // namespace

void UdevDiskSession::Release::operator()(udev *context) const
{
    udev_unref(context);
}

void UdevDiskSession::Release::operator()(udev_monitor *monitor) const
{
    udev_monitor_unref(monitor);
}

UdevDiskSession::UdevDiskSession(IsListed isListed, DiskEvents::DiskChanged callback)
    : m_isListed(std::move(isListed)),
      m_callback(std::move(callback)),
      m_udev(udev_new())
{
    m_udevMonitor = openMonitor("udev");
    m_kernelMonitor = openMonitor("kernel");
    m_disks = readAllDisks();
    // udev's events come when its rules are done. Where udevd doesn't run, or no longer does, the kernel's stand in.
    listen(m_udevMonitor, [] { return true; });
    listen(m_kernelMonitor, [] { return !isUdevRunning(); });
}

UdevDiskSession::Monitor UdevDiskSession::openMonitor(const char *source) const
{
    Monitor monitor;
    if (m_udev)
        monitor.socket.reset(udev_monitor_new_from_netlink(m_udev.get(), source));
    if (!monitor.socket)
        throw Error::fromErrno(errno, "No monitor of disks can be made");
    udev_monitor_filter_add_match_subsystem_devtype(monitor.socket.get(), kSubsystem, kWholeDisk);
    if (const int result = udev_monitor_enable_receiving(monitor.socket.get()); result < 0)
        throw Error::fromErrno(-result, "No events of disks can be received");
    return monitor;
}

void UdevDiskSession::listen(Monitor &monitor, bool (*counts)())
{
    udev_monitor *const socket = monitor.socket.get();
    monitor.notifier = std::make_unique<QSocketNotifier>(udev_monitor_get_fd(socket), QSocketNotifier::Read);
    QObject::connect(monitor.notifier.get(), &QSocketNotifier::activated, monitor.notifier.get(),
                     [this, socket, counts] { receive(socket, counts()); });
}

void UdevDiskSession::receive(udev_monitor *socket, bool counts)
{
    for (;;) {
        errno = 0;
        const Device device(udev_monitor_receive_device(socket));
        if (!device && errno == ENOBUFS && counts)
            return compareAll(); // what came faster than it was read is lost
        if (!device)
            return;
        const std::string sysPath = udev_device_get_syspath(device.get());
        const std::string action = udev_device_get_action(device.get());
        if (counts && m_isListed(sysPath))
            compare(sysPath, action == "remove" ? std::nullopt : readDisk(sysPath));
    }
}

void UdevDiskSession::compareAll()
{
    Disks now = readAllDisks();
    Disks gone = m_disks;
    for (auto &[sysPath, disk] : now) {
        gone.erase(sysPath);
        compare(sysPath, std::move(disk));
    }
    for (const auto &[sysPath, disk] : gone)
        compare(sysPath, std::nullopt);
}

void UdevDiskSession::compare(const std::string &sysPath, std::optional<UdevDisk> now)
{
    const auto before = m_disks.extract(sysPath);
    const bool isNews = now && (before.empty() || before.mapped().contents != now->contents);
    const bool isGone = !now && !before.empty();
    const std::string mediaName = now ? now->mediaName : isGone ? before.mapped().mediaName : std::string();
    if (now)
        m_disks.emplace(sysPath, std::move(*now));
    if (isNews || isGone)
        m_callback(isNews ? DiskEvents::DiskChange::appeared : DiskEvents::DiskChange::disappeared,
                   DiskEvents::DiskDescription{.isWhole = true, .mediaName = mediaName});
}

std::optional<UdevDisk> UdevDiskSession::readDisk(const std::string &sysPath) const
{
    const Device device(udev_device_new_from_syspath(m_udev.get(), sysPath.c_str()));
    return device ? readUdevDisk(device.get()) : std::nullopt;
}

UdevDiskSession::Disks UdevDiskSession::readAllDisks() const
{
    const Enumeration enumeration(udev_enumerate_new(m_udev.get()));
    udev_enumerate_add_match_subsystem(enumeration.get(), kSubsystem);
    udev_enumerate_add_match_property(enumeration.get(), "DEVTYPE", kWholeDisk);
    udev_enumerate_scan_devices(enumeration.get());
    Disks disks;
    udev_list_entry *entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(enumeration.get()))
    {
        const std::string sysPath = udev_list_entry_get_name(entry);
        std::optional<UdevDisk> disk = m_isListed(sysPath) ? readDisk(sysPath) : std::nullopt;
        if (disk)
            disks.emplace(sysPath, std::move(*disk));
    }
    return disks;
}

} // namespace brindle
