#include "linux-tools/kernel/FakeKernel.h"
#include "linux-tools/kernel/OpenCounter.h"

#include "inventory/FindDevice.h"
#include "kernel/KernelInventory.h"
#include "text/DiskutilText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fmt/format.h>

#include <filesystem>
#include <map>
#include <string>
#include <utility>

#include <unistd.h>

namespace brindle::tools {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Key;
using testing::Not;
using testing::Pair;

constexpr const char *kNvme = "pci0000:00/0000:00:1d.0/0000:3d:00.0/nvme/nvme0/nvme0n1";
constexpr const char *kUsb = "pci0000:00/0000:00:14.0/usb1/1-1/1-1:1.0/host2/target2:0:0/2:0:0:0/block/sdb";
constexpr const char *kLoop = "virtual/block/loop0";

/// Two partitions that udev knows nothing of; what is opened while a name is asked for.
class NamedDeviceTest : public testing::Test {
protected:
    NamedDeviceTest()
    {
        m_kernel.addDisk("259:0", kNvme, 12288, {{"diskseq", "5"}});
        m_kernel.writeNode("nvme0n1", mbrWith({{0xEF, 2048, 4096}, {0x83, 6144, 4096}}));
        m_kernel.addPartition("259:1", std::string(kNvme) + "/nvme0n1p1", 2048, 4096);
        m_kernel.writeNode("nvme0n1p1", fatWith("EFI", 4096));
        m_kernel.addPartition("259:2", std::string(kNvme) + "/nvme0n1p2", 6144, 4096);
        m_kernel.writeNode("nvme0n1p2", fatWith("DATA", 4096));
    }

    [[nodiscard]] Inventory read(const Scope &scope) const { return KernelInventory(m_kernel.roots()).read(scope); }

    [[nodiscard]] Inventory readNamed(const std::string &name) const
    {
        return read({.name = name, .onlyNamed = true, .withContents = true, .withDetails = true, .withMounts = true});
    }

    [[nodiscard]] std::string identifierOf(const std::string &name) const
    {
        const Inventory inventory = readNamed(name);
        const auto device = findDevice(inventory, name);
        if (!device)
            return "none";
        return device->partition ? device->partition->identifier : device->disk->identifier;
    }

    [[nodiscard]] std::map<std::string, int> openedFor(const std::string &name) const
    {
        const OpenCounter counter(m_kernel.root() / "dev");
        EXPECT_NE(identifierOf(name), "none");
        return counter.counts();
    }

    FakeKernel m_kernel;
};

TEST_F(NamedDeviceTest, OpensNoNeighbourOfWhatIsNamed)
{
    const auto disk = Pair("nvme0n1", 1);
    const auto second = Pair("nvme0n1p2", 1);
    m_kernel.setMounts("1 0 259:2 / /data rw - vfat /dev/nvme0n1p2 rw\n");

    EXPECT_THAT(openedFor("disk5"), ElementsAre(disk));
    EXPECT_THAT(openedFor("/dev/nvme0n1"), ElementsAre(disk));
    EXPECT_THAT(openedFor("disk5s2"), ElementsAre(disk, second));
    EXPECT_THAT(openedFor("/dev/nvme0n1p2"), ElementsAre(disk, second));
    EXPECT_THAT(openedFor("/data"), ElementsAre(disk, second));
    EXPECT_THAT(openedFor("DATA"), ElementsAre(disk, Pair("nvme0n1p1", 1), second));
}

TEST_F(NamedDeviceTest, TellsOfWhatIsNamedAsMuchAsOfAllTogether)
{
    const Inventory all = read({.name = {}, .withContents = true, .withDetails = true});

    EXPECT_EQ(infoText(*findDevice(readNamed("disk5"), "disk5")), infoText(*findDevice(all, "disk5")));
    EXPECT_EQ(infoText(*findDevice(readNamed("disk5s1"), "disk5s1")), infoText(*findDevice(all, "disk5s1")));
}

TEST_F(NamedDeviceTest, DoesNotReadTheTableOfADiskThatUdevKnows)
{
    m_kernel.addDisk("7:0", kLoop, 8192, {{"diskseq", "11"}});
    m_kernel.addUdevRecord("7:0", {"ID_PART_TABLE_TYPE=dos"});
    m_kernel.writeNode("loop0", mbrWith({{0xEF, 2048, 4096}}));

    EXPECT_THAT(openedFor("disk11"), IsEmpty());
    EXPECT_THAT(openedFor("disk11s1"), ElementsAre(Pair("loop0", 1)));
}

TEST_F(NamedDeviceTest, TakesALinkForTheDeviceWhoseNumberItLeadsTo)
{
    const auto number = m_kernel.linkToSomeBlockDevice("disk/by-label/STICK");
    if (!number)
        GTEST_SKIP() << "there is no block device in /dev";
    m_kernel.addDisk("8:16", kUsb, 8192, {{"diskseq", "8"}});
    m_kernel.addPartition(*number, std::string(kUsb) + "/sdb3", 2048, 4096);

    EXPECT_EQ(identifierOf("/dev/disk/by-label/STICK"), "disk8s3");
    EXPECT_EQ(identifierOf("/dev/disk/by-label/EFI"), "none");
}

TEST_F(NamedDeviceTest, TakesAMappedDeviceForThePartitionThatCarriesIt)
{
    m_kernel.addVirtual("253:0", "dm-0", {"nvme0n1p2"});
    m_kernel.addVirtual("253:1", "dm-1", {"dm-0"});

    EXPECT_EQ(identifierOf("/dev/dm-1"), "disk5s2");
}

TEST_F(NamedDeviceTest, TellsTheMountOfTheMappedDeviceThatIsNamed)
{
    m_kernel.addVirtual("253:0", "dm-0", {"nvme0n1p2"});
    m_kernel.addVirtual("253:1", "dm-1", {"nvme0n1p2"});
    m_kernel.setMounts("1 0 253:0 / / rw - ext4 /dev/mapper/vg-root rw\n"
                       "2 1 253:1 / /home rw - ext4 /dev/mapper/vg-home rw\n");

    const Inventory inventory = readNamed("/dev/dm-1");

    EXPECT_EQ(findDevice(inventory, "/dev/dm-1")->mount->mountPoint, "/home");
}

TEST_F(NamedDeviceTest, TakesAnyPathThatLeadsToAMountPoint)
{
    namespace fs = std::filesystem;
    const fs::path root = fs::canonical(m_kernel.root());
    fs::create_directories(root / "mnt/inside");
    fs::create_directory_symlink("mnt", root / "link");
    m_kernel.setMounts(fmt::format("1 0 259:2 / {} rw - vfat /dev/nvme0n1p2 rw\n", (root / "mnt").string()));
    const fs::path before = fs::current_path();
    fs::current_path(root / "mnt/inside");

    for (const std::string &name : {(root / "mnt/").string(), (root / "link").string(),
                                    (root / "mnt/../link/").string(), std::string(".."), std::string("../../mnt")})
        EXPECT_EQ(identifierOf(name), "disk5s2") << name;
    for (const std::string &name : {(root / "mnt/inside").string(), (root / "none/").string(), std::string("mnt")})
        EXPECT_EQ(identifierOf(name), "none") << name;

    fs::current_path(before);
}

TEST_F(NamedDeviceTest, TakesANodeThatLiesElsewhere)
{
    const auto number = m_kernel.linkToSomeBlockDevice("elsewhere");
    if (!number)
        GTEST_SKIP() << "there is no block device in /dev";
    m_kernel.addDisk("8:16", kUsb, 8192, {{"diskseq", "8"}});
    m_kernel.addPartition(*number, std::string(kUsb) + "/sdb3", 2048, 4096);

    EXPECT_EQ(identifierOf(m_kernel.node("elsewhere")), "disk8s3");
}

TEST_F(NamedDeviceTest, TakesTheNameOfAMappedVolumeForThePartitionThatCarriesIt)
{
    m_kernel.addVirtual("253:0", "dm-0", {"nvme0n1p2"});
    m_kernel.addVirtual("253:1", "dm-1", {"dm-0"});
    m_kernel.addVirtual("253:2", "dm-2", {"dm-0"});
    m_kernel.setAttribute("virtual/block/dm-2", "dm/name", "vg-spare");
    m_kernel.addUdevRecord("253:1", {"ID_FS_TYPE=ext4", "ID_FS_LABEL_ENC=home"});
    m_kernel.addUdevRecord("253:2", {"ID_FS_TYPE=xfs", "ID_FS_LABEL_ENC=spare"});
    m_kernel.setMounts("2 1 253:1 / /home rw - ext4 /dev/mapper/vg-home rw\n");

    const Inventory inventory = readNamed("home");

    ASSERT_TRUE(findDevice(inventory, "home"));
    EXPECT_EQ(findDevice(inventory, "home")->mount->mountPoint, "/home");
    EXPECT_EQ(identifierOf("home"), "disk5s2");
    EXPECT_EQ(identifierOf("spare"), "disk5s2");
    EXPECT_EQ(identifierOf("vg-spare"), "disk5s2");
    EXPECT_EQ(identifierOf("vg-home"), "none");
}

TEST_F(NamedDeviceTest, ReadsTheDetailsOfNoOtherDiskForTheNameOfAVolume)
{
    constexpr const char *kOthers = "pci0000:00/0000:00:1e.0/0000:4d:00.0/nvme/nvme1/";
    for (const auto &[number, name] : {std::pair("259:8", "nvme1n1"), std::pair("259:9", "nvme1n2")}) {
        m_kernel.addDisk(number, std::string(kOthers) + name, 8192);
        m_kernel.addUdevRecord(number, {"ID_FS_TYPE=vfat", std::string("ID_FS_LABEL_ENC=ON ") + name});
        m_kernel.writeNode(name, "");
    }

    const auto opened = openedFor("ON nvme1n1"); // Asked for its health.

    EXPECT_THAT(opened, Contains(Pair("nvme1n1", 1)));
    EXPECT_THAT(opened, Not(Contains(Key("nvme1n2"))));
}

TEST_F(NamedDeviceTest, SaysWhyWhatIsMountedLiesOnNoDisk)
{
    m_kernel.setMounts("1 0 0:41 / / rw - overlay overlay rw,lowerdir=/var/lib/a,upperdir=/var/lib/b\n"
                       "2 1 0:42 / /tmp rw - tmpfs tmpfs rw\n");

    EXPECT_THAT(readNamed("/").notes,
                ElementsAre("/ is an overlay of folders that lie on no disk which can be seen from here"));
    EXPECT_THAT(readNamed("/tmp/").notes,
                ElementsAre("/tmp is a file system of type tmpfs, which lies on no disk that can be seen from here"));
    EXPECT_THAT(readNamed("nothing").notes, IsEmpty());
}

/// Gives root's right to read everything up for a while; an ordinary user has none.
class OrdinaryUser {
public:
    OrdinaryUser() { EXPECT_EQ(::geteuid() == 0 ? ::seteuid(kNobody) : 0, 0); }
    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;
    ~OrdinaryUser() { EXPECT_EQ(::getuid() == 0 ? ::seteuid(0) : 0, 0); }

private:
    static constexpr uid_t kNobody = 65534;
};

TEST_F(NamedDeviceTest, SaysWhyTheTypesAreMissingWhereOnlyRootMayReadTheDisk)
{
    namespace fs = std::filesystem;
    fs::permissions(m_kernel.root(), fs::perms::all);
    fs::permissions(m_kernel.node("nvme0n1"), fs::perms::none);
    const auto notesOf = [&](const Scope &scope) {
        const OrdinaryUser user;
        return read(scope).notes;
    };

    EXPECT_THAT(notesOf({.name = {}, .withContents = true}),
                ElementsAre("types and names are missing, for udev does not tell what lies on /dev/nvme0n1, and this "
                            "user may not read it"));
    EXPECT_THAT(notesOf({}), IsEmpty());
    m_kernel.addUdevRecord("259:0", {"ID_PART_TABLE_TYPE=gpt"});
    m_kernel.addUdevRecord("259:1", {"ID_PART_ENTRY_SCHEME=gpt", "ID_PART_ENTRY_TYPE=x"});
    m_kernel.addUdevRecord("259:2", {"ID_PART_ENTRY_SCHEME=gpt", "ID_PART_ENTRY_TYPE=x"});
    EXPECT_THAT(notesOf({.name = {}, .withContents = true, .withDetails = true}), IsEmpty());
}

TEST_F(NamedDeviceTest, KnowsNoMappedDeviceThatNoDiskCarries)
{
    m_kernel.addVirtual("252:0", "zram0", {});

    EXPECT_EQ(identifierOf("/dev/zram0"), "none");
}

} // namespace
} // namespace brindle::tools
