#pragma once

#include "assembly/Platform.h"
#include "records/ToolRunner.h"
#include "state/DiskManager.h"

namespace brindle {

/// One object of each shared class, made in a fixed order and handed downwards by reference: the wiring that the
/// application, the command line and the tests share.
class Assembly {
public:
    explicit Assembly(Platform platform);

    [[nodiscard]] DiskManager &diskManager() { return m_diskManager; }

private:
    Platform m_platform;
    ToolRunner m_toolRunner;
    SystemInfoDetector m_systemInfoDetector;
    DiskManager m_diskManager;
};

} // namespace brindle
