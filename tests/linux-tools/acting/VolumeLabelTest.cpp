#include "acting/VolumeLabel.h"

#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

struct LabelCase {
    const char *name;
    const char *fileSystem;
    std::string asked;
    std::string written;
};

class FitsALabel : public testing::TestWithParam<LabelCase> {};

TEST_P(FitsALabel, ToItsFileSystem)
{
    EXPECT_EQ(fittedLabel(GetParam().asked, GetParam().fileSystem), GetParam().written);
}

INSTANTIATE_TEST_SUITE_P(
    VolumeLabel, FitsALabel,
    testing::Values(LabelCase{"FatInUpperCase", "vfat", "efi", "EFI"},
                    LabelCase{"FatCutAtElevenBytes", "vfat", "twelve chars", "TWELVE CHAR"},
                    LabelCase{"FatWithItsForbiddenCharacters", "vfat", R"(a"*+,./:<>)", "A_________"},
                    LabelCase{"FatWithItsOtherForbiddenCharacters", "vfat", R"(;=?[\]|)", "_______"},
                    LabelCase{"FatWithOneSignForEachForeignCharacter", "vfat", "éü日", "___"},
                    LabelCase{"FatWithoutBlanksAtItsEnd", "vfat", "ab   ", "AB"},
                    LabelCase{"FatWithoutBlanksAtItsBeginning", "vfat", "  ab", "AB"},
                    LabelCase{"FatCutAtABlank", "vfat", "abcdefghij klm", "ABCDEFGHIJ"},
                    LabelCase{"FatWithItsAllowedSigns", "vfat", "A-B_C!#$%&'", "A-B_C!#$%&'"},
                    LabelCase{"ExFatInUnits", "exfat", "日本語日本語日本語日本語", "日本語日本語日本語日本"},
                    LabelCase{"ExFatWithTwoUnitsForACharacter", "exfat", "💾💾💾💾💾💾", "💾💾💾💾💾"},
                    LabelCase{"ExFatWithItsForbiddenCharacters", "exfat", "a/b:c", "a_b_c"},
                    LabelCase{"NtfsCutAtThirtyTwoUnits", "ntfs", std::string(40, 'n'), std::string(32, 'n')},
                    LabelCase{"HfsWithoutColon", "hfsplus", "a:b/c", "a_b/c"},
                    LabelCase{"ExtCutAtSixteenBytes", "ext4", "ééééééééé", "éééééééé"},
                    LabelCase{"ExtNeverWithinACharacter", "ext4", "aéééééééé", "aééééééé"},
                    LabelCase{"ApfsCutAt255Bytes", "apfs", std::string(300, 'a'), std::string(255, 'a')},
                    LabelCase{"ControlCharacters", "apfs", "a\tb\x7F\xC2\x85", "a_b__"},
                    LabelCase{"LineSeparators", "apfs", "a\xE2\x80\xA8z", "a_z"},
                    LabelCase{"StrayBytes", "apfs", "\x80\xC0\xAF\xED\xA0\x80", "______"},
                    LabelCase{"TruncatedCharacter", "apfs", "a\xE2\x80", "a__"}, LabelCase{"Nothing", "vfat", "", ""}),
    [](const auto &info) { return std::string(info.param.name); });

} // namespace
} // namespace brindle::tools
