#include "linux-tools/SampleMachine.h"

#include "text/DiskutilText.h"

#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

constexpr std::string_view kInternal =
    R"(/dev/disk0 (internal, physical):
   #:                       TYPE NAME                    SIZE       IDENTIFIER
   0:      GUID_partition_scheme                        *500.3 GB   disk0
   1:                        EFI EFI                     209.7 MB   disk0s1
   2:                 Apple_APFS Container disk3         380.0 GB   disk0s2
   3: 142F5F5D-B9E5-4433-87C0-68B6B72699C7 a long name   41.9 MB    disk0s5

)";

constexpr std::string_view kContainer =
    R"(/dev/disk3 (synthesized):
   #:                       TYPE NAME                    SIZE       IDENTIFIER
   0:      APFS Container Scheme -                      +380.0 GB   disk3
                                 Physical Store disk0s2
   1:                APFS Volume Macintosh HD            15.2 GB    disk3s1
   2:                APFS Volume VM                      20.5 KB    disk3s6

)";

constexpr std::string_view kImage =
    R"(/dev/disk4 (disk image):
   #:                       TYPE NAME                    SIZE       IDENTIFIER
   0:                            RESCUE                 +19.8 MB    disk4

)";

// The four wide characters of the name take eight cells.
constexpr std::string_view kStick =
    R"(/dev/disk10 (external, physical):
   #:                       TYPE NAME                    SIZE       IDENTIFIER
   0:     FDisk_partition_scheme                        *31.9 GB    disk10
   1:               Windows_NTFS 系統保留                1000.0 GB  disk10s1

)";

std::string joined(std::initializer_list<std::string_view> parts)
{
    std::string text;
    for (const std::string_view part : parts)
        text += part;
    return text;
}

Inventory withOnePartitionNamed(std::string name)
{
    Inventory inventory;
    inventory.disks = {{.identifier = "disk2", .scheme = "GUID_partition_scheme", .sizeBytes = 1000}};
    inventory.disks[0].partitions = {
        {.identifier = "disk2s1",
         .type = "EFI",
         .sizeBytes = 512,
         .volume = Volume{.fileSystem = "vfat", .version = {}, .name = std::move(name), .uuid = {}}}};
    return inventory;
}

TEST(ListText, PrintsEveryDiskAndContainerByItsNumber)
{
    const Inventory machine = sampleMachine();

    const std::string text = listText(machine);

    EXPECT_EQ(text, joined({kInternal, kContainer, kImage, kStick}));
}

TEST(ListText, LeavesImagesAndContainersOutOfThePhysicalOnes)
{
    const Inventory machine = sampleMachine();

    const std::string text = listPhysicalText(machine);

    EXPECT_EQ(text, joined({kInternal, kStick}));
}

TEST(ListText, PrintsTheWholeDiskOfAPartition)
{
    const Inventory machine = sampleMachine();

    EXPECT_EQ(listText(*findDevice(machine, "disk0s1")), kInternal);
    EXPECT_EQ(listText(*findDevice(machine, "disk10")), kStick);
}

TEST(ListText, PrintsTheContainerOfAnApfsVolume)
{
    const Inventory machine = sampleMachine();

    EXPECT_EQ(listText(*findDevice(machine, "disk3s6")), kContainer);
}

TEST(ListText, IsEmptyWithoutDisks)
{
    EXPECT_EQ(listText(Inventory{}), "");
}

struct NameCase {
    const char *name;
    std::string label;
    const char *row;
};

class PrintsTheNameColumn : public testing::TestWithParam<NameCase> {};

TEST_P(PrintsTheNameColumn, WithinItsCellsAndItsLine)
{
    const std::string text = listText(withOnePartitionNamed(GetParam().label));

    EXPECT_EQ(text, joined({"/dev/disk2 (internal, physical):\n"
                            "   #:                       TYPE NAME                    SIZE       IDENTIFIER\n"
                            "   0:      GUID_partition_scheme                        *1.0 KB     disk2\n",
                            GetParam().row, "\n\n"}));
}

INSTANTIATE_TEST_SUITE_P(
    Labels, PrintsTheNameColumn,
    testing::Values(NameCase{"None", "", "   1:                        EFI                         512 B      disk2s1"},
                    NameCase{"ThatJustFits", "12345678901234567890123",
                             "   1:                        EFI 12345678901234567890123 512 B      disk2s1"},
                    NameCase{"OneTooLong", "123456789012345678901234",
                             "   1:                        EFI 12345678901234567890... 512 B      disk2s1"},
                    NameCase{"Of255Bytes", std::string(255, 'x'),
                             "   1:                        EFI xxxxxxxxxxxxxxxxxxxx... 512 B      disk2s1"},
                    NameCase{"WideAndTooLong", "系統保留系統保留系統保留",
                             "   1:                        EFI 系統保留系統保留系統... 512 B      disk2s1"},
                    NameCase{"ThatForgesASection", "A\n/dev/disk9 (x):",
                             "   1:                        EFI A\xEF\xBF\xBD/dev/disk9 (x):       512 B      disk2s1"},
                    NameCase{"NotUtf8", "caf\xE9",
                             "   1:                        EFI caf\xEF\xBF\xBD                    512 B      disk2s1"}),
    [](const auto &info) { return info.param.name; });

} // namespace
} // namespace brindle::tools
