#pragma once

#include "platform/DiskEvents.h"
#include "platform/linux/FileDescriptor.h"

#include <QSocketNotifier>

#include <memory>
#include <string>

namespace brindle {

/// Tells of the volumes that are mounted, or of those that are unmounted, in this process's view of the file system.
///
/// Where /proc can't be read it tells nothing.
class MountObserver : public DiskEvents::Observation {
public:
    MountObserver(DiskEvents::VolumeChange which, DiskEvents::VolumeChanged callback);

private:
    [[nodiscard]] std::string readTable() const;
    void tellChanges();

    DiskEvents::VolumeChange m_which;
    DiskEvents::VolumeChanged m_callback;
    FileDescriptor m_file;
    std::string m_table; ///< As it was last seen.
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace brindle
