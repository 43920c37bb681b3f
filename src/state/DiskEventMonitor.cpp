#include "state/DiskEventMonitor.h"

#include "base/Log.h"
#include "base/Spawn.h"
#include "base/Text.h"

#include <QMetaObject>

#include <utility>

namespace brindle {

DiskEventMonitor::DiskEventMonitor(DiskEvents &events, Scheduler &scheduler, StartScan startScan)
    : m_events(events),
      m_scheduler(scheduler),
      m_startScan(std::move(startScan))
{
}

DiskEventMonitor::~DiskEventMonitor()
{
    stopMonitoring();
}

void DiskEventMonitor::startMonitoring()
{
    if (m_isMonitoring)
        return;
    m_isMonitoring = true;
    registerWorkspaceObservers();
    setupDiskArbitration();
    Log::line("✅ DiskEventMonitor started");
}

void DiskEventMonitor::stopMonitoring()
{
    if (!m_isMonitoring)
        return;
    m_isMonitoring = false;
    removeWorkspaceObservers();
    tearDownDiskArbitration();
    Log::line("🛑 DiskEventMonitor stopped");
}

void DiskEventMonitor::registerWorkspaceObservers()
{
    m_mountObserver = observeVolumes(DiskEvents::VolumeChange::mounted);
    m_unmountObserver = observeVolumes(DiskEvents::VolumeChange::unmounted);
    Log::line("✅ NSWorkspace volume observers registered");
}

std::unique_ptr<DiskEvents::Observation> DiskEventMonitor::observeVolumes(DiskEvents::VolumeChange change)
{
    return m_events.observeVolumes(change, [this, change](const std::optional<std::string> &path) {
        if (path)
            volumeDidChange(change, *path);
    });
}

void DiskEventMonitor::setupDiskArbitration()
{
    m_diskArbitrationSession = m_events.createSession(
        [this](DiskEvents::DiskChange change, const std::optional<DiskEvents::DiskDescription> &disk) {
            physicalDiskDidChange(change, disk);
        });
    Log::line("{}", m_diskArbitrationSession ? "✅ DiskArbitration session created — physical disk callbacks registered"
                                             : "❌ Failed to create DiskArbitration session");
}

void DiskEventMonitor::removeWorkspaceObservers()
{
    m_mountObserver.reset();
    m_unmountObserver.reset();
    // Behind the timers that events of this turn are still going to start.
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_debounceTimer.reset();
            m_physicalDebounceTimer.reset();
        },
        Qt::QueuedConnection);
}

void DiskEventMonitor::tearDownDiskArbitration()
{
    if (!m_diskArbitrationSession)
        return;
    m_diskArbitrationSession.reset();
    Log::line("🔌 DiskArbitration session torn down");
}

void DiskEventMonitor::volumeDidChange(DiskEvents::VolumeChange change, const std::string &path)
{
    if (findIgnoringCase(path, "efi") != std::string::npos)
        return;
    Log::line("📂 Volume {}: {}", change == DiskEvents::VolumeChange::mounted ? "mounted" : "unmounted", path);
    scheduleVolumeRefresh();
}

void DiskEventMonitor::physicalDiskDidChange(DiskEvents::DiskChange change,
                                             const std::optional<DiskEvents::DiskDescription> &disk)
{
    if (!disk || !disk->isWhole.value_or(false))
        return;
    Log::line("💿 Physical disk {}: {}", change == DiskEvents::DiskChange::appeared ? "appeared" : "disappeared",
              disk->mediaName.value_or("unknown"));
    schedulePhysicalRefresh();
}

void DiskEventMonitor::scheduleVolumeRefresh()
{
    QMetaObject::invokeMethod(
        this, [this] { restart(m_debounceTimer, kVolumeInterval); }, Qt::QueuedConnection);
}

void DiskEventMonitor::schedulePhysicalRefresh()
{
    QMetaObject::invokeMethod(
        this, [this] { restart(m_physicalDebounceTimer, kPhysicalInterval); }, Qt::QueuedConnection);
}

void DiskEventMonitor::restart(std::unique_ptr<Scheduler::Timer> &timer, Scheduler::Duration interval)
{
    timer.reset();
    timer = m_scheduler.after(interval, [this] { spawn([self = QPointer(this)] { return refresh(self); }); });
}

QCoro::Task<> DiskEventMonitor::refresh(QPointer<DiskEventMonitor> self)
{
    if (!self)
        co_return;
    Log::line("📢 Disk event triggered refresh");
    auto scan = self->m_startScan(true);
    co_await scan;
}

} // namespace brindle
