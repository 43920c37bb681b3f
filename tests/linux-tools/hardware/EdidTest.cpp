#include "SampleEdid.h"

#include "hardware/Edid.h"

#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

TEST(Edid, TellsNameSerialNumberAndPixels)
{
    const auto display = readEdid(sampleEdid("DELL U2720Q", "ABC1234"));

    ASSERT_TRUE(display);
    EXPECT_EQ(display->name, "DELL U2720Q");
    EXPECT_EQ(display->serialNumber, "ABC1234");
    EXPECT_EQ(display->width, 3840);
    EXPECT_EQ(display->height, 2160);
    EXPECT_EQ(display->refreshHertz, 60);
}

TEST(Edid, CallsADisplayWithoutNameByItsMaker)
{
    EXPECT_EQ(readEdid(sampleEdid("", ""))->name, "DEL");
}

TEST(Edid, KnowsNoMakerFromWhatAreNoLetters)
{
    std::string block = sampleEdid("", "");
    block[8] = '\x7F';
    block[9] = '\xFF';

    EXPECT_EQ(readEdid(withCheckSum(block))->name, "");
}

TEST(Edid, ReadsABlockThatExtensionsFollow)
{
    EXPECT_TRUE(readEdid(sampleEdid("A", "") + std::string(128, '\xFF')));
}

TEST(Edid, RefusesATruncatedBlock)
{
    const std::string block = sampleEdid("A", "");

    for (std::size_t length = 0; length < block.size(); ++length)
        EXPECT_FALSE(readEdid(std::string_view(block).substr(0, length))) << length;
}

TEST(Edid, RefusesAWrongCheckSum)
{
    std::string block = sampleEdid("A", "");
    block[60] = static_cast<char>(block[60] + 1);

    EXPECT_FALSE(readEdid(block));
}

TEST(Edid, RefusesABlockThatBeginsOtherwise)
{
    std::string block = sampleEdid("A", "");
    block[1] = '\0';

    EXPECT_FALSE(readEdid(withCheckSum(block)));
}

TEST(Edid, TellsNoRateOfATimingWithoutPixels)
{
    std::string block = sampleEdid("A", "");
    block.replace(56, 16, 16, '\0');

    const auto display = readEdid(withCheckSum(block));

    ASSERT_TRUE(display);
    EXPECT_EQ(display->width, 0);
    EXPECT_EQ(display->refreshHertz, 0);
}

TEST(Edid, BelievesNoAbsurdRate)
{
    std::string block = sampleEdid("A", "");
    block.replace(56, 16, 16, '\0');
    block[56] = '\1'; // One pixel in a row,
    block[59] = '\1'; // and one row.

    EXPECT_EQ(readEdid(withCheckSum(block))->refreshHertz, 0);
}

TEST(Edid, TakesTheFirstTimingForTheDisplaysOwn)
{
    std::string block = sampleEdid("", "");
    const std::string smaller = std::string(block.substr(54, 18)).replace(2, 1, 1, '\x01');
    block.replace(72, 18, smaller);

    EXPECT_EQ(readEdid(withCheckSum(block))->width, 3840);
}

TEST(Edid, EndsATextThatNothingEndsWithItsDescriptor)
{
    EXPECT_EQ(readEdid(sampleEdid("ABCDEFGHIJKLM", ""))->name, "ABCDEFGHIJKLM");
}

} // namespace
} // namespace brindle::tools
