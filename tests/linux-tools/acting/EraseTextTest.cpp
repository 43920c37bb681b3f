#include "acting/EraseText.h"

#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

constexpr std::uint64_t kSectorBytes = 512;

std::string textOf(const char *format, std::uint64_t sizeBytes)
{
    return formattingText({.identifier = "disk2s2", .label = "X", .sizeBytes = sizeBytes}, *findFormat(format));
}

TEST(EraseText, CountsTheClustersOfFat)
{
    EXPECT_EQ(textOf("FAT32", 15220736 * kSectorBytes),
              "512 bytes per physical sector\n"
              "/dev/rdisk2s2: 15191032 sectors in 1898879 FAT32 clusters (4096 bytes/cluster)\n");
    EXPECT_EQ(textOf("MS-DOS", 409600 * kSectorBytes),
              "512 bytes per physical sector\n"
              "/dev/rdisk2s2: 403266 sectors in 403266 FAT32 clusters (512 bytes/cluster)\n");
}

TEST(EraseText, TellsNoClustersOfAVolumeThatIsTooSmallForAny)
{
    EXPECT_EQ(textOf("FAT32", kSectorBytes), "");
}

TEST(EraseText, TellsTheSizeOfTheJournal)
{
    EXPECT_EQ(textOf("JHFS+", 851'000'000),
              "Initialized /dev/rdisk2s2 as a 851 MB case-insensitive HFS Plus volume with a 8192k journal\n");
    EXPECT_EQ(textOf("JHFS+", 500'000'000'000),
              "Initialized /dev/rdisk2s2 as a 500 GB case-insensitive HFS Plus volume with a 40960k journal\n");
    EXPECT_EQ(textOf("HFS+", 851'000'000), "Initialized /dev/rdisk2s2 as a 851 MB case-insensitive HFS Plus volume\n");
}

TEST(EraseText, TellsNothingOfOtherFileSystems)
{
    EXPECT_EQ(textOf("ExFAT", 851'000'000), "");
    EXPECT_EQ(textOf("APFS", 851'000'000), "");
}

} // namespace
} // namespace brindle::tools
