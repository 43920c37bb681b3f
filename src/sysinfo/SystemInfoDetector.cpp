#include "sysinfo/SystemInfoDetector.h"

#include "base/Spawn.h"

#include <utility>

namespace brindle {

SystemInfoDetector::SystemInfoDetector(ToolRunner &tools, const ToolPaths &paths)
    : m_tools(tools),
      m_paths(paths),
      m_diskutil(tools, paths)
{
}

QCoro::Task<> SystemInfoDetector::detectSystemInfo()
{
    const QPointer self(this);
    std::vector<QCoro::Task<>> readers;
    readers.push_back(detectBootDisk());
    readers.push_back(detectBootloaderVersions());
    auto all = joinAll(std::move(readers));
    co_await all;
    if (self)
        setIsDetectionComplete(true);
}

QCoro::Task<> SystemInfoDetector::refreshBootInfo()
{
    m_detectionTask.cancel();
    const auto pass = CancellationToken::cancellable();
    m_detectionTask = pass;
    auto task = spawn([self = QPointer(this), pass] { return runBootInfoPass(self, pass); });
    co_await task;
}

QCoro::Task<> SystemInfoDetector::runBootInfoPass(QPointer<SystemInfoDetector> self, CancellationToken pass)
{
    if (!self || pass.isCancelled())
        co_return;
    self->setIsDetectionComplete(false);

    std::vector<QCoro::Task<>> readers;
    readers.push_back(self->detectBootDisk());
    readers.push_back(self->detectOpenCoreVersion());
    readers.push_back(self->detectCloverVersion());
    auto all = joinAll(std::move(readers));
    co_await all;
    if (self && !pass.isCancelled())
        self->setIsDetectionComplete(true);
}

void SystemInfoDetector::setBootDiskIdentifier(std::optional<std::string> bootDiskIdentifier)
{
    publish(m_bootDiskIdentifier, std::move(bootDiskIdentifier), &SystemInfoDetector::bootDiskIdentifierChanged);
}

void SystemInfoDetector::setBootloaderDiskIdentifier(std::optional<std::string> bootloaderDiskIdentifier)
{
    publish(m_bootloaderDiskIdentifier, std::move(bootloaderDiskIdentifier),
            &SystemInfoDetector::bootloaderDiskIdentifierChanged);
}

void SystemInfoDetector::setOpenCoreVersion(std::optional<std::string> openCoreVersion)
{
    publish(m_openCoreVersion, std::move(openCoreVersion), &SystemInfoDetector::openCoreVersionChanged);
}

void SystemInfoDetector::setCloverVersion(std::optional<std::string> cloverVersion)
{
    publish(m_cloverVersion, std::move(cloverVersion), &SystemInfoDetector::cloverVersionChanged);
}

void SystemInfoDetector::setBootVolumePath(std::optional<std::string> bootVolumePath)
{
    publish(m_bootVolumePath, std::move(bootVolumePath), &SystemInfoDetector::bootVolumePathChanged);
}

void SystemInfoDetector::setIsDetectionComplete(bool isDetectionComplete)
{
    publish(m_isDetectionComplete, isDetectionComplete, &SystemInfoDetector::isDetectionCompleteChanged);
}

template <typename Value>
void SystemInfoDetector::publish(Value &field, Value value, void (SystemInfoDetector::*changed)())
{
    if (field == value)
        return;
    field = std::move(value);
    Q_EMIT(this->*changed)();
}

} // namespace brindle
