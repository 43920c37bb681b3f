#include "linux-tools/kernel/FakeKernel.h"
#include "linux-tools/udisks/FakeUDisks.h"

#include "kernel/KernelInventory.h"
#include "udisks/UDisksHealth.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fmt/format.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace brindle::tools {
namespace {

using testing::Each;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr std::chrono::milliseconds kLimit{5000};
constexpr std::uint64_t kYesterday = 1800000000;

const std::string kDrive = "/org/freedesktop/UDisks2/drives/Some_Drive_S1234";
const std::string kAta = "org.freedesktop.UDisks2.Drive.Ata";
const std::string kNvme = "org.freedesktop.UDisks2.NVMe.Controller";

/// The drive of the disk sda, with what it is given besides.
FakeUDisks::Properties driveWith(FakeUDisks::Properties properties)
{
    properties[{"/org/freedesktop/UDisks2/block_devices/sda", "org.freedesktop.UDisks2.Block", "Drive"}] =
        ObjectPath{kDrive};
    return properties;
}

FakeUDisks::Properties ataDrive(std::uint64_t updated, bool isFailing)
{
    return driveWith({{{kDrive, kAta, "SmartUpdated"}, updated}, {{kDrive, kAta, "SmartFailing"}, isFailing}});
}

FakeUDisks::Properties nvmeDrive(std::uint64_t updated, const std::vector<std::string> &warnings)
{
    return driveWith({{{kDrive, kNvme, "SmartUpdated"}, updated}, {{kDrive, kNvme, "SmartCriticalWarning"}, warnings}});
}

class UDisksHealthTest : public testing::Test {
protected:
    void SetUp() override
    {
        if (!PrivateBus::canRun())
            GTEST_SKIP() << "dbus-daemon is not installed";
        m_bus.emplace();
    }

    std::optional<PrivateBus> m_bus;
};

struct HealthCase {
    const char *name;
    FakeUDisks::Properties properties;
    Smart health;
};

class TellsTheHealthOfADrive : public UDisksHealthTest, public testing::WithParamInterface<HealthCase> {};

TEST_P(TellsTheHealthOfADrive, AsUDisksLastReadIt)
{
    const FakeUDisks udisks(m_bus->address(), GetParam().properties);

    const Smart health = udisksHealth(m_bus->address(), "sda", kLimit);

    EXPECT_EQ(health, GetParam().health);
    EXPECT_THAT(udisks.calls(), Not(IsEmpty()));
    EXPECT_THAT(udisks.calls(), Each("org.freedesktop.DBus.Properties.Get")); // All else could wake the drive.
}

INSTANTIATE_TEST_SUITE_P(Drives, TellsTheHealthOfADrive,
                         testing::Values(HealthCase{"Ata", ataDrive(kYesterday, false), Smart::verified},
                                         HealthCase{"FailingAta", ataDrive(kYesterday, true), Smart::failing},
                                         HealthCase{"AtaThatWasNeverRead", ataDrive(0, false), Smart::notSupported},
                                         HealthCase{"Nvme", nvmeDrive(kYesterday, {}), Smart::verified},
                                         HealthCase{"HotNvme", nvmeDrive(kYesterday, {"temperature"}), Smart::verified},
                                         HealthCase{"WornNvme", nvmeDrive(kYesterday, {"temperature", "spare"}),
                                                    Smart::failing},
                                         HealthCase{"NvmeThatWasNeverRead", nvmeDrive(0, {}), Smart::notSupported},
                                         HealthCase{"WithoutSmart", driveWith({}), Smart::notSupported},
                                         HealthCase{"Unknown", {}, Smart::notSupported}),
                         [](const auto &info) { return info.param.name; });

TEST_F(UDisksHealthTest, DoesNotStartUDisks)
{
    EXPECT_EQ(udisksHealth(m_bus->address(), "sda", kLimit), Smart::notSupported);

    EXPECT_FALSE(m_bus->hasStartedUDisks());
}

TEST_F(UDisksHealthTest, RefusesANameThatMakesNoObject)
{
    const FakeUDisks udisks(m_bus->address(), ataDrive(kYesterday, false));

    EXPECT_EQ(udisksHealth(m_bus->address(), "../sda", kLimit), Smart::notSupported);
    EXPECT_THAT(udisks.calls(), IsEmpty());
}

TEST(UDisksHealth, KnowsNothingWithoutABus)
{
    EXPECT_EQ(udisksHealth("unix:path=/nowhere/bus", "sda", kLimit), Smart::notSupported);
    EXPECT_EQ(udisksHealth("no address", "sda", kLimit), Smart::notSupported);
}

TEST(UDisksHealth, GivesUpOnABusThatDoesNotAnswer)
{
    const FakeKernel folder;
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    const std::string path = folder.root() / "bus";
    path.copy(static_cast<char *>(address.sun_path), sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(listener, 1), 0);

    EXPECT_EQ(udisksHealth("unix:path=" + path, "sda", std::chrono::milliseconds(50)), Smart::notSupported);

    ::close(listener);
}

/// A disk of the kernel that the drive of UDisks2 is.
class HealthOfADiskTest : public UDisksHealthTest {
protected:
    HealthOfADiskTest()
    {
        const std::string path = "pci0000:00/0000:00:17.0/ata1/host0/target0:0:0/0:0:0:0/block/sda";
        m_kernel.addDisk("8:0", path, 8192, {{"diskseq", "3"}});
        m_kernel.addUdevRecord("8:0", {"ID_PART_TABLE_TYPE=gpt"});
        m_kernel.addPartition("8:1", path + "/sda1", 2048, 4096);
        m_kernel.addUdevRecord("8:1", {"ID_PART_ENTRY_SCHEME=gpt", "ID_PART_ENTRY_TYPE=0x83"});
    }

    [[nodiscard]] Smart healthOf(const std::string &name, const std::string &busAddress) const
    {
        KernelRoots roots = m_kernel.roots();
        roots.systemBus = busAddress;
        return KernelInventory(roots).read({.name = name, .onlyNamed = true, .withDetails = true}).disks.at(0).smart;
    }

    FakeKernel m_kernel;
};

TEST_F(HealthOfADiskTest, ComesFromUDisksWhereTheDriveCannotBeAsked)
{
    const FakeUDisks udisks(m_bus->address(), ataDrive(kYesterday, true));

    EXPECT_EQ(healthOf("disk3", m_bus->address()), Smart::failing);
}

TEST_F(HealthOfADiskTest, IsNotAskedForWhereAPartitionIsTold)
{
    const FakeUDisks udisks(m_bus->address(), ataDrive(kYesterday, true));

    EXPECT_EQ(healthOf("disk3s1", m_bus->address()), Smart::notSupported);
    EXPECT_THAT(udisks.calls(), IsEmpty());
}

TEST_F(HealthOfADiskTest, IsUnknownWithoutABus)
{
    EXPECT_EQ(healthOf("disk3", "unix:path=/nowhere/bus"), Smart::notSupported);
    EXPECT_EQ(healthOf("disk3", ""), Smart::notSupported);
}

/// A disk of this machine whose health only UDisks2 could tell.
std::optional<Disk> diskOfThisMachine()
{
    for (Disk &disk : KernelInventory().read({.name = {}, .withDetails = true}).disks) {
        if (!disk.isImage && !disk.node.starts_with("/dev/sr") && disk.smart == Smart::notSupported)
            return std::move(disk);
    }
    return std::nullopt;
}

std::string outputOf(const std::string &command)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> pipe(::popen(command.c_str(), "r"), ::pclose);
    std::string output;
    for (int character = std::fgetc(pipe.get()); character != EOF; character = std::fgetc(pipe.get()))
        output += static_cast<char>(character);
    return output;
}

TEST_F(UDisksHealthTest, IsToldByDiskutilOnTheBusThatTheSystemNames)
{
    const auto disk = diskOfThisMachine();
    if (!disk)
        GTEST_SKIP() << "this machine has no disk without a health of its own";
    FakeUDisks::Properties properties = ataDrive(kYesterday, true);
    const std::string name = disk->node.substr(std::string_view("/dev/").size());
    properties[{"/org/freedesktop/UDisks2/block_devices/" + name, "org.freedesktop.UDisks2.Block", "Drive"}] =
        ObjectPath{kDrive};
    const FakeUDisks udisks(m_bus->address(), properties);

    const std::string info =
        outputOf(fmt::format("DBUS_SYSTEM_BUS_ADDRESS={} {} info {}", m_bus->address(), DISKUTIL, disk->identifier));

    EXPECT_THAT(info, HasSubstr("   SMART Status:              Failing\n"));
}

} // namespace
} // namespace brindle::tools
