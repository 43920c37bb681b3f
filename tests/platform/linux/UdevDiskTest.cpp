#include "platform/linux/UdevDisk.h"

#include <gtest/gtest.h>

#include <string>

namespace brindle {
namespace {

struct PathCase {
    const char *name;
    const char *sysPath;
    bool isListed;
};

class SysPath : public testing::TestWithParam<PathCase> {};

TEST_P(SysPath, TellsADiskThatIsListed)
{
    EXPECT_EQ(isListedDisk(GetParam().sysPath), GetParam().isListed);
}

INSTANTIATE_TEST_SUITE_P(
    UdevDisk, SysPath,
    testing::Values(
        PathCase{"Sata", "/sys/devices/pci0000:00/0000:00:1f.2/ata1/host0/target0:0:0/0:0:0:0/block/sda", true},
        PathCase{"Usb", "/sys/devices/pci0000:00/usb1/1-1/1-1:1.0/host6/target6:0:0/6:0:0:0/block/sdb", true},
        PathCase{"Nvme", "/sys/devices/pci0000:00/0000:01:00.0/nvme/nvme0/nvme0n1", true},
        PathCase{"NvmeOfTwoPaths", "/sys/devices/virtual/nvme-subsystem/nvme-subsys0/nvme0n1", true},
        PathCase{"Optical", "/sys/devices/pci0000:00/ata2/host1/target1:0:0/1:0:0:0/block/sr0", true},
        PathCase{"Card", "/sys/devices/pci0000:00/mmc_host/mmc0/mmc0:aaaa/block/mmcblk0", true},
        PathCase{"Loop", "/sys/devices/virtual/block/loop0", true},
        PathCase{"Ram", "/sys/devices/virtual/block/ram0", false},
        PathCase{"Zram", "/sys/devices/virtual/block/zram0", false},
        PathCase{"DeviceMapper", "/sys/devices/virtual/block/dm-0", false},
        PathCase{"Raid", "/sys/devices/virtual/block/md127", false},
        PathCase{"Floppy", "/sys/devices/platform/floppy.0/block/fd0", false},
        PathCase{"BareFlash", "/sys/devices/platform/flash/mtd/mtd0/mtdblock0", false},
        PathCase{"BootArea", "/sys/devices/platform/mmc_host/mmc0/mmc0:0001/block/mmcblk0/mmcblk0boot0", false}),
    [](const auto &row) { return row.param.name; });

struct PropertyCase {
    const char *name;
    const char *text;
    const char *decoded;
};

class UdevProperty : public testing::TestWithParam<PropertyCase> {};

TEST_P(UdevProperty, IsDecodedToOneLine)
{
    EXPECT_EQ(decodeUdevProperty(GetParam().text), GetParam().decoded);
}

INSTANTIATE_TEST_SUITE_P(
    UdevDisk, UdevProperty,
    testing::Values(PropertyCase{"Blanks", R"(Samsung\x20SSD\x20860\x20EVO\x20\x20)", "Samsung SSD 860 EVO"},
                    PropertyCase{"Plain", "VBOX", "VBOX"}, PropertyCase{"Empty", "", ""},
                    PropertyCase{"BackslashItself", R"(a\x5cx20b)", R"(a\x20b)"},
                    PropertyCase{"CutEscape", R"(a\x2)", R"(a\x2)"}, PropertyCase{"NoEscape", R"(a\xzzb)", R"(a\xzzb)"},
                    PropertyCase{"ControlCharacters", R"(a\x0ab\x1b[2J\x7f)", "a\uFFFDb\uFFFD[2J\uFFFD"},
                    PropertyCase{"OtherThanAscii", "Größe", "Größe"}),
    [](const auto &row) { return row.param.name; });

} // namespace
} // namespace brindle
