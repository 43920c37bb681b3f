#include "kernel/UdevRecord.h"

#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

TEST(UdevRecord, ReadsAPartition)
{
    const UdevRecord record = parseUdevRecord("S:disk/by-label/EFI\nI:2219405\n"
                                              "E:ID_PART_ENTRY_SCHEME=gpt\n"
                                              "E:ID_PART_ENTRY_TYPE=c12a7328-f81f-11d2-ba4b-00a0c93ec93b\n"
                                              "E:ID_PART_ENTRY_UUID=8d1f4a70-7ae9-4b3c-9d2a-00a1b2c3d4e5\n"
                                              "E:ID_FS_TYPE=vfat\nE:ID_FS_VERSION=FAT32\n"
                                              "E:ID_FS_LABEL=MY_EFI\nE:ID_FS_LABEL_ENC=MY\\x20EFI\n"
                                              "E:ID_FS_UUID=67E3-17ED\nG:systemd\n");

    EXPECT_EQ(record.entryTable, "gpt");
    EXPECT_EQ(record.entryType, "c12a7328-f81f-11d2-ba4b-00a0c93ec93b");
    EXPECT_EQ(record.entryUuid, "8d1f4a70-7ae9-4b3c-9d2a-00a1b2c3d4e5");
    ASSERT_TRUE(record.volume);
    EXPECT_EQ(record.volume->fileSystem, "vfat");
    EXPECT_EQ(record.volume->version, "FAT32");
    EXPECT_EQ(record.volume->name, "MY EFI");
    EXPECT_EQ(record.volume->uuid, "67E3-17ED");
}

TEST(UdevRecord, ReadsADisk)
{
    const UdevRecord record = parseUdevRecord("E:ID_BUS=ata\nE:ID_MODEL_ENC=Samsung\\x20SSD\\x20860\\x20EVO\n"
                                              "E:ID_PART_TABLE_TYPE=gpt\nE:ID_CDROM_MEDIA=1");

    EXPECT_EQ(record.bus, "ata");
    EXPECT_EQ(record.model, "Samsung SSD 860 EVO");
    EXPECT_EQ(record.tableType, "gpt");
    EXPECT_TRUE(record.hasOpticalMedium);
    EXPECT_FALSE(record.volume);
}

TEST(UdevRecord, HasNoVolumeWithoutATypeOfFileSystem)
{
    EXPECT_FALSE(parseUdevRecord("E:ID_FS_LABEL_ENC=EFI\n").volume);
}

TEST(UdevRecord, PassesOverLinesThatAreNoProperties)
{
    const UdevRecord record = parseUdevRecord("\nE:\nE:ID_FS_TYPE\nE:=x\nID_FS_TYPE=ext4\nW:ID_FS_TYPE=ext4\n=\n");

    EXPECT_FALSE(record.volume);
}

TEST(UdevRecord, KeepsTheEqualsSignsOfAValue)
{
    EXPECT_EQ(parseUdevRecord("E:ID_MODEL_ENC=a=b\n").model, "a=b");
}

struct TextCase {
    const char *name;
    const char *encoded;
    const char *decoded;
};

class DecodesUdevText : public testing::TestWithParam<TextCase> {};

TEST_P(DecodesUdevText, ByteByByte)
{
    EXPECT_EQ(decodeUdevText(GetParam().encoded), GetParam().decoded);
}

INSTANTIATE_TEST_SUITE_P(Texts, DecodesUdevText,
                         testing::Values(TextCase{"Plain", "EFI", "EFI"}, TextCase{"Blank", "NO\\x20NAME", "NO NAME"},
                                         TextCase{"UpperCaseDigits", "\\xC3\\xA9", "\xC3\xA9"},
                                         TextCase{"Newline", "a\\x0ab", "a\nb"},
                                         TextCase{"EscapedBackslash", "\\x5cx41", "\\x41"},
                                         TextCase{"CutShort", "a\\x2", "a\\x2"}, TextCase{"NoDigits", "\\xzz", "\\xzz"},
                                         TextCase{"OneDigit", "\\x2z", "\\x2z"},
                                         TextCase{"BareBackslash", "a\\", "a\\"}),
                         [](const auto &info) { return info.param.name; });

} // namespace
} // namespace brindle::tools
