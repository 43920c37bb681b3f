#include "platform/linux/MountObserver.h"

#include "platform/linux/MountChanges.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

namespace brindle {

MountObserver::MountObserver(DiskEvents::VolumeChange which, DiskEvents::VolumeChanged callback)
    : m_which(which),
      m_callback(std::move(callback)),
      m_file(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC))
{
    if (!m_file)
        return;
    m_table = readTable();
    // Each change of the table since the last poll(2) is told as an exception, once.
    m_notifier = std::make_unique<QSocketNotifier>(m_file.value(), QSocketNotifier::Exception);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] { tellChanges(); });
}

// A table that changes while it is read is marked again, and then read again.
std::string MountObserver::readTable() const
{
    std::string table;
    std::array<char, 16384> buffer;
    ::lseek(m_file.value(), 0, SEEK_SET);
    for (;;) {
        const ssize_t count = ::read(m_file.value(), buffer.data(), buffer.size());
        if (count > 0)
            table.append(buffer.data(), static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            return table;
    }
}

void MountObserver::tellChanges()
{
    const std::string before = std::exchange(m_table, readTable());
    const MountChanges changes = compareMountTables(before, m_table);
    for (const std::string &path : m_which == DiskEvents::VolumeChange::mounted ? changes.mounted : changes.unmounted)
        m_callback(path);
}

} // namespace brindle
