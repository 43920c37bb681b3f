#pragma once

#include "platform/DiskEvents.h"
#include "platform/Scheduler.h"

#include <QCoroTask>
#include <QObject>
#include <QPointer>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace brindle {

/// Keeps the list of disks true without polling: a burst of events becomes one forced scan.
///
/// Volumes and whole disks have a timer each, so that events of one kind never push back the other's scan. Volumes with
/// "efi" anywhere in their path are passed over: who mounts an EFI partition repairs its record. Main thread only.
class DiskEventMonitor : public QObject {
public:
    /// `startScan(force)` of the disk manager.
    using StartScan = std::function<QCoro::Task<>(bool force)>;

    /// How long after the last event of its kind a scan starts.
    static constexpr std::chrono::milliseconds kVolumeInterval{1000};
    static constexpr std::chrono::milliseconds kPhysicalInterval{2000};

    /// All outlive the monitor, and what \a startScan refers to does too.
    DiskEventMonitor(DiskEvents &events, Scheduler &scheduler, StartScan startScan);
    ~DiskEventMonitor() override; ///< Stops first.

    [[nodiscard]] bool isMonitoring() const { return m_isMonitoring; }

    /// Nothing while it monitors already. Without a session of the system, volume events alone still work.
    void startMonitoring();

    /// Nothing unless it monitors. A timer that runs doesn't fire any more; a scan that runs goes on.
    void stopMonitoring();

private:
    void registerWorkspaceObservers();
    void setupDiskArbitration();
    void removeWorkspaceObservers();
    void tearDownDiskArbitration();

    [[nodiscard]] std::unique_ptr<DiskEvents::Observation> observeVolumes(DiskEvents::VolumeChange change);
    void volumeDidChange(DiskEvents::VolumeChange change, const std::string &path);
    void physicalDiskDidChange(DiskEvents::DiskChange change, const std::optional<DiskEvents::DiskDescription> &disk);

    void scheduleVolumeRefresh();
    void schedulePhysicalRefresh();
    void restart(std::unique_ptr<Scheduler::Timer> &timer, Scheduler::Duration interval);
    static QCoro::Task<> refresh(QPointer<DiskEventMonitor> self);

    DiskEvents &m_events;
    Scheduler &m_scheduler;
    StartScan m_startScan;
    std::unique_ptr<DiskEvents::Observation> m_mountObserver;
    std::unique_ptr<DiskEvents::Observation> m_unmountObserver;
    std::unique_ptr<Scheduler::Timer> m_debounceTimer;
    std::unique_ptr<Scheduler::Timer> m_physicalDebounceTimer;
    std::unique_ptr<DiskEvents::Observation> m_diskArbitrationSession;
    bool m_isMonitoring = false;
};

} // namespace brindle
