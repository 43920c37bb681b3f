#include "assembly/Assembly.h"

#include <utility>

namespace brindle {

Assembly::Assembly(Platform platform)
    : m_platform(std::move(platform)),
      m_toolRunner(*m_platform.childProcesses, *m_platform.scheduler),
      m_systemInfoDetector(m_toolRunner, m_platform.toolPaths),
      m_diskManager(m_toolRunner, m_platform.toolPaths, *m_platform.userDefaults, *m_platform.scheduler,
                    m_systemInfoDetector),
      m_efiCopyManager(*m_platform.fileManager, *m_platform.dialogs, *m_platform.scheduler),
      m_viewHeightCalculator(*m_platform.userDefaults),
      m_diskEventMonitor(*m_platform.diskEvents, *m_platform.scheduler,
                         [this](bool force) { return m_diskManager.startScan(force); })
{
}

} // namespace brindle
