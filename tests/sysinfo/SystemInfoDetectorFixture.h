#pragma once

#include "base/BlockOn.h"
#include "support/FakeToolRunner.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "sysinfo/SystemInfoDetector.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <utility>

namespace brindle {

/// A detector whose tools know nothing until a test lets them answer. Every test also finds that nothing is logged.
class SystemInfoDetectorTest : public testing::Test {
protected:
    static constexpr const char *kUUID = "E04C1A41-F007-43FC-84F8-8B92FF102291";

    const std::string bootInfo = "/usr/sbin/diskutil info /";
    const std::string openCoreVersion = "/usr/sbin/nvram 4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:opencore-version";
    const std::string bootPath = "/usr/sbin/nvram 4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:boot-path";
    const std::string physicalList = "/usr/sbin/diskutil list physical";

    void TearDown() override { EXPECT_THAT(log.lines(), testing::IsEmpty()); }

    static std::string clover(const std::string &variable) { return "/usr/sbin/nvram " + variable; }
    static std::string info(const std::string &partition) { return "/usr/sbin/diskutil info " + partition; }

    void bootFrom(const std::string &disk) { tools.answer(bootInfo, "   Part of Whole:   " + disk + "\n"); }

    /// OpenCore with a boot path of \a uuid, and the disks that `diskutil list physical` tells.
    void startOpenCoreFrom(const std::string &uuid, const std::vector<std::string> &disks)
    {
        tools.answer(openCoreVersion, "4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:opencore-version\tREL-099-2024-03-04\n");
        tools.answer(bootPath, bootPathLine(uuid));
        std::string list;
        for (const std::string &disk : disks)
            list += "/dev/" + disk + " (internal, physical):\n";
        tools.answer(physicalList, list);
    }

    static std::string bootPathLine(const std::string &uuid)
    {
        return "4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:boot-path\tPciRoot(0x0)/HD(1,GPT," + uuid + ",0x28,0x64000)\n";
    }

    static std::string infoWith(const std::string &uuid) { return "   Disk / Partition UUID:   " + uuid + "\n"; }

    void refresh() { blockOn(detector->refreshBootInfo(), kPatience); }
    void detect() { blockOn(detector->detectSystemInfo(), kPatience); }

    LogCapture log;
    FakeToolRunner tools;
    std::unique_ptr<SystemInfoDetector> detector = std::make_unique<SystemInfoDetector>(tools, ToolPaths::system());
};

} // namespace brindle
