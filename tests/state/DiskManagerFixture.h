#pragma once

#include "state/DiskManager.h"

#include "base/BlockOn.h"
#include "support/FakeToolRunner.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/MemoryUserDefaults.h"
#include "sysinfo/SystemInfoDetector.h"

#include <QCoreApplication>

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>

namespace brindle {

/// A manager whose tools answer by the test's word and whose boot information is known: that there is none.
class DiskManagerFixture : public testing::Test {
protected:
    DiskManagerFixture() { blockOn(systemInfo.refreshBootInfo(), std::chrono::seconds(1)); }

    /// Made at the first call, so that a test can fill the user defaults before.
    DiskManager &manager()
    {
        if (!m_manager)
            m_manager.emplace(tools, ToolPaths::system(), defaults, clock, systemInfo);
        return *m_manager;
    }

    /// Lets the event loop work until \a commandLine was run.
    void awaitCall(const std::string &commandLine)
    {
        while (std::find(tools.calls().begin(), tools.calls().end(), commandLine) == tools.calls().end())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    void scan() { blockOn(manager().startScan(false), std::chrono::seconds(1)); }

    /// Answers the questions of a scan for whole disks without partitions.
    void plugIn(const std::vector<std::string> &identifiers)
    {
        std::string list;
        for (const std::string &identifier : identifiers) {
            list += "/dev/" + identifier + " (internal, physical):\n";
            tools.answer("/usr/sbin/diskutil info " + identifier, "   Whole:   Yes\n   Protocol:   SATA\n");
        }
        tools.answer("/usr/sbin/diskutil list physical", list);
        tools.answer("/usr/sbin/diskutil list", list);
        tools.answer("/bin/df -k", "");
    }

    LogCapture log;
    ManualClock clock;
    MemoryUserDefaults defaults;
    FakeToolRunner tools;
    FakeToolRunner bootTools;
    SystemInfoDetector systemInfo{bootTools, ToolPaths::system()};

private:
    std::optional<DiskManager> m_manager;
};

} // namespace brindle
