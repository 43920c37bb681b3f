#include "linux-tools/udisks/FakeUDisks.h"

#include "udisks/UDisksEject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace brindle::tools {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::chrono::seconds kLimit{5};
const std::string kDrive = "/org/freedesktop/UDisks2/drives/Some_Stick";
const std::string kBlocks = "/org/freedesktop/UDisks2/block_devices/";

FakeUDisks::Properties driveThat(const std::string &quality)
{
    return {{{kBlocks + "sdb", "org.freedesktop.UDisks2.Block", "Drive"}, ObjectPath{kDrive}},
            {{kDrive, "org.freedesktop.UDisks2.Drive", quality}, true}};
}

class UDisksEject : public testing::Test {
protected:
    void SetUp() override
    {
        if (!PrivateBus::canRun())
            GTEST_SKIP() << "dbus-daemon is not installed";
        m_bus = std::make_unique<PrivateBus>();
    }

    void start(FakeUDisks::Properties properties)
    {
        m_udisks = std::make_unique<FakeUDisks>(m_bus->address(), std::move(properties));
    }

    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<FakeUDisks> m_udisks;
};

TEST_F(UDisksEject, UnmountsAllVolumesAndGivesTheMediumOut)
{
    start(driveThat("Ejectable"));

    EXPECT_EQ(udisksEject(m_bus->address(), "sdb", {"sdb2", "sdb1"}, kLimit), "");

    EXPECT_THAT(m_udisks->acts(),
                ElementsAre("Unmount " + kBlocks + "sdb2", "Unmount " + kBlocks + "sdb1", "Eject " + kDrive));
}

TEST_F(UDisksEject, SwitchesADriveOffThatGivesNoMediumOut)
{
    start(driveThat("CanPowerOff"));

    EXPECT_EQ(udisksEject(m_bus->address(), "sdb", {}, kLimit), "");

    EXPECT_THAT(m_udisks->acts(), ElementsAre("PowerOff " + kDrive));
}

TEST_F(UDisksEject, TakesTheFileOffALoopDevice)
{
    start({});

    EXPECT_EQ(udisksEject(m_bus->address(), "loop3", {}, kLimit), "");

    EXPECT_THAT(m_udisks->acts(), ElementsAre("Delete " + kBlocks + "loop3"));
}

TEST_F(UDisksEject, TellsWhyUDisksRefusesAndGoesNoFurther)
{
    start(driveThat("Ejectable"));
    m_udisks->refuse("target is busy");

    EXPECT_EQ(udisksEject(m_bus->address(), "sdb", {"sdb1"}, kLimit), "target is busy");

    EXPECT_THAT(m_udisks->acts(), ElementsAre("Unmount " + kBlocks + "sdb1"));
}

TEST_F(UDisksEject, DoesNotStartUDisks)
{
    EXPECT_NE(udisksEject(m_bus->address(), "sdb", {"sdb1"}, kLimit), "");

    EXPECT_FALSE(m_bus->hasStartedUDisks());
}

} // namespace
} // namespace brindle::tools
