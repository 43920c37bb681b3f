#include "platform/linux/MountChanges.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

const std::string kSystem = "22 1 8:2 / / rw,relatime shared:1 - ext4 /dev/sda2 rw\n"
                            "23 22 0:21 / /proc rw,nosuid,nodev,noexec shared:12 - proc proc rw\n"
                            "24 22 0:22 / /run rw,nosuid,nodev shared:5 - tmpfs tmpfs rw,mode=755\n"
                            "25 22 0:5 / /dev rw,nosuid shared:2 - devtmpfs udev rw\n"
                            "26 22 0:40 / /mnt/pictures rw - nfs4 server:/pictures rw\n";

const std::string kStick = "80 22 8:17 / /run/media/ann/STICK rw,nosuid,nodev shared:60 - vfat /dev/sdb1 rw\n";

using Paths = std::vector<std::string>;

TEST(CompareMountTables, TellsAVolumeThatIsMountedAndOneThatIsUnmounted)
{
    EXPECT_EQ(compareMountTables(kSystem, kSystem + kStick),
              (MountChanges{.mounted = {"/run/media/ann/STICK"}, .unmounted = {}}));
    EXPECT_EQ(compareMountTables(kSystem + kStick, kSystem),
              (MountChanges{.mounted = {}, .unmounted = {"/run/media/ann/STICK"}}));
}

TEST(CompareMountTables, TellsNothingOfEqualTablesOrOfAnotherOrder)
{
    EXPECT_EQ(compareMountTables(kSystem + kStick, kSystem + kStick), MountChanges());
    EXPECT_EQ(compareMountTables(kSystem + kStick, kStick + kSystem), MountChanges());
    EXPECT_EQ(compareMountTables("", ""), MountChanges());
}

TEST(CompareMountTables, TellsAllVolumesOfATableInItsOrder)
{
    const std::string second = "81 22 8:18 / /run/media/ann/A rw - ext4 /dev/sdb2 rw\n";

    EXPECT_EQ(compareMountTables(kSystem, kSystem + kStick + second).mounted,
              (Paths{"/run/media/ann/STICK", "/run/media/ann/A"}));
}

TEST(CompareMountTables, TellsNothingOfARemount)
{
    const std::string readOnly =
        "80 22 8:17 / /run/media/ann/STICK ro,nosuid,nodev shared:60 - vfat /dev/sdb1 ro,errors=remount-ro\n";

    EXPECT_EQ(compareMountTables(kSystem + kStick, kSystem + readOnly), MountChanges());
}

TEST(CompareMountTables, TellsBothOfAMountThatIsMoved)
{
    const std::string moved = "80 22 8:17 / /mnt rw,nosuid,nodev shared:60 - vfat /dev/sdb1 rw\n";

    EXPECT_EQ(compareMountTables(kStick, moved),
              (MountChanges{.mounted = {"/mnt"}, .unmounted = {"/run/media/ann/STICK"}}));
}

TEST(CompareMountTables, TellsBothWhenAnotherVolumeTookThePlaceUnseen)
{
    const std::string other = "80 22 8:33 / /run/media/ann/STICK rw - vfat /dev/sdc1 rw\n";
    const std::string again = "81 22 8:17 / /run/media/ann/STICK rw - vfat /dev/sdb1 rw\n";
    const MountChanges both{.mounted = {"/run/media/ann/STICK"}, .unmounted = {"/run/media/ann/STICK"}};

    EXPECT_EQ(compareMountTables(kStick, other), both);
    EXPECT_EQ(compareMountTables(kStick, again), both);
}

TEST(CompareMountTables, TellsOneOfTwoMountsThatAreAlikeButForTheirNumber)
{
    const std::string twin = "81 80 8:17 / /run/media/ann/STICK rw - vfat /dev/sdb1 rw\n";

    EXPECT_EQ(compareMountTables(kStick, kStick + twin).mounted, Paths{"/run/media/ann/STICK"});
    EXPECT_EQ(compareMountTables(kStick + twin, kStick).unmounted, Paths{"/run/media/ann/STICK"});
}

TEST(CompareMountTables, TellsOfAVolumeAtASecondPlaceButNotOfAFolderOfIt)
{
    const std::string whole = "81 22 8:17 / /srv/stick rw - vfat /dev/sdb1 rw\n";
    const std::string folder = "82 22 8:17 /pictures /srv/pictures rw - vfat /dev/sdb1 rw\n";

    EXPECT_EQ(compareMountTables(kStick, kStick + whole + folder).mounted, Paths{"/srv/stick"});
}

TEST(CompareMountTables, DecodesTheKernelsEscapesInPaths)
{
    const std::string odd = R"(80 22 8:17 / /mnt/a\040b\011c\012d\134040e\043 rw - vfat /dev/sdb1 rw)";

    EXPECT_EQ(compareMountTables("", odd).mounted, Paths{"/mnt/a b\tc\nd\\040e#"});
}

TEST(CompareMountTables, KeepsWhatOnlyLooksLikeAnEscape)
{
    const std::string odd = R"(80 22 8:17 / /mnt/\9\04\08x\ rw - vfat /dev/sdb1 rw)";

    EXPECT_EQ(compareMountTables("", odd).mounted, Paths{R"(/mnt/\9\04\08x\)"});
}

struct LineCase {
    const char *name;
    const char *line;
    bool counts;
};

class OneMount : public testing::TestWithParam<LineCase> {};

TEST_P(OneMount, CountsWhereItIsAVolume)
{
    EXPECT_EQ(compareMountTables(kSystem, kSystem + GetParam().line + '\n').mounted,
              GetParam().counts ? Paths{"/m"} : Paths{});
}

INSTANTIATE_TEST_SUITE_P(
    MountTable, OneMount,
    testing::Values(LineCase{"NVMe", "90 22 259:1 / /m rw - ext4 /dev/nvme0n1p1 rw", true},
                    LineCase{"NoOptionalField", "90 22 8:1 / /m rw - ext4 /dev/sda1 rw", true},
                    LineCase{"ManyOptionalFields", "90 22 8:1 / /m rw shared:1 master:2 unbindable - ext4 /dev/sda1 rw",
                             true},
                    LineCase{"SourceOfAnotherName", "90 22 8:1 / /m rw - ext4 /dev/root rw", true},
                    LineCase{"DiskImage", "90 22 7:0 / /m rw - ext4 /dev/loop0 rw", true},
                    LineCase{"Encrypted", "90 22 254:0 / /m rw - ext4 /dev/mapper/luks-0 rw", true},
                    LineCase{"Fuse", "90 22 8:17 / /m rw - fuseblk /dev/sdb1 rw", true},
                    LineCase{"Subvolume", "90 22 0:50 /@home /m rw - btrfs /dev/sda3 rw", true},
                    LineCase{"ManyDevices", "90 22 0:51 / /m rw - bcachefs /dev/sda3:/dev/sdb3 rw", true},
                    LineCase{"Pool", "90 22 0:54 / /m rw - zfs tank/home rw", true},
                    LineCase{"Memory", "90 22 0:52 / /m rw - tmpfs tmpfs rw", false},
                    LineCase{"MemoryNamedAsADevice", "90 22 0:52 / /m rw - tmpfs /dev/sda1 rw", false},
                    LineCase{"Overlay", "90 22 0:53 / /m rw - overlay overlay rw,lowerdir=/a", false},
                    LineCase{"Compressed", "90 22 253:0 / /m rw - ext4 /dev/zram0 rw", false},
                    LineCase{"RamDisk", "90 22 1:0 / /m rw - ext4 /dev/ram0 rw", false},
                    LineCase{"Floppy", "90 22 2:0 / /m rw - vfat /dev/fd0 rw", false},
                    LineCase{"BoundFolder", "90 22 8:2 /srv /m rw - ext4 /dev/sda2 rw", false},
                    LineCase{"Empty", "", false}, LineCase{"Cut", "90 22 8:1 /", false},
                    LineCase{"NoNumber", "90 22 - / /m rw - ext4 /dev/sda1 rw", false}),
    [](const auto &row) { return row.param.name; });

} // namespace
} // namespace brindle
