#include "LabelReader.h"
#include "SampleHardware.h"

#include "base/Text.h"
#include "hardware/HardwareText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace brindle::tools {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr std::string_view kNotebook =
    R"(Hardware:

    Hardware Overview:

      Model Name: MacBook Pro
      Model Identifier: MacBookPro15,3
      Processor Name: Intel Core i7-8850H
      Processor Speed: 2.6 GHz
      Number of Processors: 1
      Total Number of Cores: 6
      Memory: 16 GB
      Serial Number (system): C02XL0AAJGH5

)";

constexpr std::string_view kSystemOnAChip =
    R"(Hardware:

    Hardware Overview:

      Model Name: MacBook Air
      Model Identifier: MacBookAir10,1
      Chip: Apple M1
      Total Number of Cores: 8
      Memory: 16 GB
      Serial Number (system): FVFDT0AAQ6L4

)";

constexpr std::string_view kSlotsWithoutSerialNumbers =
    R"(Memory:

    Memory Slots:

        BANK 0/ChannelA-DIMM0:

          Size: 16 GB
          Type: DDR4
          Speed: 2667 MHz
          Status: OK
          Manufacturer: Micron
          Part Number: 8ATF1G64HZ-2G6E1

        BANK 2/ChannelB-DIMM0:

          Size: Empty
          Type: Empty
          Speed: Empty
          Status: Empty
          Manufacturer: Empty
          Part Number: Empty

)";

constexpr std::string_view kSolderedMemory =
    R"(Memory:

      Memory: 16 GB
      Type: LPDDR4

)";

constexpr std::string_view kCardsAlone =
    R"(Graphics/Displays:

    Intel UHD Graphics 630:

      Chipset Model: Intel UHD Graphics 630
      Type: GPU
      Bus: Built-In
      VRAM (Dynamic, Max): 1536 MB
      Vendor: Intel (0x8086)
      Device ID: 0x3e9b

    AMD Radeon Pro 560X:

      Chipset Model: AMD Radeon Pro 560X
      Type: GPU
      Bus: PCIe
      VRAM (Total): 4 GB
      Vendor: AMD (0x1002)
      Device ID: 0x67ef

)";

constexpr std::string_view kCardsAndDisplays =
    R"(Graphics/Displays:

    Intel UHD Graphics 630:

      Chipset Model: Intel UHD Graphics 630
      Type: GPU
      Bus: Built-In
      VRAM (Dynamic, Max): 1536 MB
      Vendor: Intel (0x8086)
      Device ID: 0x3e9b
      Displays:
        Color LCD:
          Resolution: 2880 x 1800
          Online: Yes
          Connection Type: Internal

    AMD Radeon Pro 560X:

      Chipset Model: AMD Radeon Pro 560X
      Type: GPU
      Bus: PCIe
      VRAM (Total): 4 GB
      Vendor: AMD (0x1002)
      Device ID: 0x67ef
      Displays:
        DELL U2720Q:
          Resolution: 3840 x 2160 @ 60 Hz
          Display Serial Number: ABC1234
          Online: Yes
          Connection Type: DisplayPort

)";

HardwareFacts withOneCard(GraphicsCard card)
{
    HardwareFacts facts;
    facts.graphics = {std::move(card)};
    return facts;
}

TEST(HardwareText, PrintsANotebookInFull)
{
    EXPECT_EQ(hardwareText(sampleNotebook(), DetailLevel::full), kNotebook);
}

TEST(HardwareText, PrintsAChipInsteadOfAProcessor)
{
    EXPECT_EQ(hardwareText(sampleSystemOnAChip(), DetailLevel::full), kSystemOnAChip);
}

TEST(HardwareText, PrintsTheHeadingsAloneWhenNothingIsKnown)
{
    EXPECT_EQ(hardwareText({}, DetailLevel::full), "Hardware:\n\n    Hardware Overview:\n\n\n");
    EXPECT_EQ(memoryText({}, DetailLevel::full), "Memory:\n\n\n");
    EXPECT_EQ(displaysText({}, DetailLevel::full), "Graphics/Displays:\n\n");
}

TEST(HardwareText, TellsTheSerialNumberInFullOnly)
{
    EXPECT_EQ(labelled(hardwareText(sampleNotebook(), DetailLevel::full), "Serial Number (system):"), "C02XL0AAJGH5");
    EXPECT_THAT(hardwareText(sampleNotebook(), DetailLevel::basic), Not(HasSubstr("Serial")));
    EXPECT_THAT(hardwareText(sampleNotebook(), DetailLevel::mini), Not(HasSubstr("Serial")));
}

struct SpeedCase {
    const char *name;
    std::uint64_t megahertz;
    const char *text;
};

class WritesTheSpeed : public testing::TestWithParam<SpeedCase> {};

TEST_P(WritesTheSpeed, InGigahertzWithTwoDecimalsAtMost)
{
    HardwareFacts facts;
    facts.processor.speedMegahertz = GetParam().megahertz;

    const std::string text = hardwareText(facts, DetailLevel::full);

    EXPECT_EQ(labelled(text, "Processor Speed:"), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(HardwareText, WritesTheSpeed,
                         testing::Values(SpeedCase{"unknown", 0, ""}, SpeedCase{"whole", 3000, "3 GHz"},
                                         SpeedCase{"oneDecimal", 3200, "3.2 GHz"},
                                         SpeedCase{"twoDecimals", 2260, "2.26 GHz"},
                                         SpeedCase{"rounded", 2596, "2.6 GHz"}, SpeedCase{"slow", 800, "0.8 GHz"}),
                         [](const auto &info) { return info.param.name; });

TEST(MemoryText, PrintsTheSlotsAndLeavesSerialNumbersOutAtMiniDetail)
{
    EXPECT_EQ(memoryText(sampleNotebook(), DetailLevel::mini), kSlotsWithoutSerialNumbers);
}

TEST(MemoryText, TellsTheSerialNumberOfAModuleInFull)
{
    EXPECT_EQ(labelled(memoryText(sampleNotebook(), DetailLevel::full), "Serial Number:"), "0x1A2B3C4D");
}

TEST(MemoryText, PrintsSolderedMemoryAsAWhole)
{
    EXPECT_EQ(memoryText(sampleSystemOnAChip(), DetailLevel::mini), kSolderedMemory);
}

TEST(MemoryText, IsReadByTypeAndSpeedPastAnEmptyFirstSlot)
{
    HardwareFacts facts = sampleNotebook();
    std::swap(facts.memory.slots[0], facts.memory.slots[1]);

    EXPECT_EQ(typeAndSpeed(memoryText(facts, DetailLevel::mini)), "DDR4 2667 MHz");
}

TEST(MemoryText, LendsNoSpeedOfTheNextSlotToOneWithoutSpeed)
{
    HardwareFacts facts;
    facts.memory.slots = {{.name = "A", .sizeBytes = 1024, .type = "DDR3"},
                          {.name = "B", .sizeBytes = 1024, .type = "DDR4", .speedMegahertz = 3200}};

    EXPECT_EQ(typeAndSpeed(memoryText(facts, DetailLevel::mini)), "DDR4 3200 MHz");
}

TEST(DisplaysText, PrintsTheCardsAloneAtMiniDetail)
{
    EXPECT_EQ(displaysText(sampleNotebook(), DetailLevel::mini), kCardsAlone);
}

TEST(DisplaysText, PrintsTheDisplaysUnderTheirCardsInFull)
{
    EXPECT_EQ(displaysText(sampleNotebook(), DetailLevel::full), kCardsAndDisplays);
}

TEST(DisplaysText, LeavesSerialNumbersOutAtBasicDetail)
{
    const std::string text = displaysText(sampleNotebook(), DetailLevel::basic);

    EXPECT_THAT(text, HasSubstr("DELL U2720Q:"));
    EXPECT_THAT(text, Not(HasSubstr("Serial")));
}

TEST(DisplaysText, IsReadAsTwoCardsWithTheirMemoryThoughBothHaveDisplays)
{
    EXPECT_EQ(cards(displaysText(sampleNotebook(), DetailLevel::mini)),
              "Intel UHD Graphics 630 1536 MB, AMD Radeon Pro 560X 4 GB");
}

TEST(DisplaysText, IsReadAsOneCardThoughItsNameHoldsTheWordDisplay)
{
    const HardwareFacts facts = withOneCard({.name = "Matrox G200 Display Adapter", .memoryBytes = 1 << 24});

    EXPECT_EQ(cards(displaysText(facts, DetailLevel::mini)), "Matrox G200 Display Adapter 16 MB");
}

TEST(DisplaysText, CallsACardWithoutNameAGraphicsCard)
{
    EXPECT_EQ(cards(displaysText(withOneCard({.vendor = "AMD"}), DetailLevel::mini)), "Graphics Card");
}

struct HostileCase {
    const char *name;
    const char *raw;
    const char *shown;
};

class ShowsAHostileName : public testing::TestWithParam<HostileCase> {};

TEST_P(ShowsAHostileName, AsOneLineThatMakesNoLabel)
{
    HardwareFacts facts = withOneCard({.name = GetParam().raw});
    facts.modelName = GetParam().raw;

    EXPECT_EQ(labelled(hardwareText(facts, DetailLevel::full), "Model Name:"), GetParam().shown);
    EXPECT_EQ(labelled(hardwareText(facts, DetailLevel::full), "Chip:"), "");
    EXPECT_EQ(cards(displaysText(facts, DetailLevel::mini)), GetParam().shown);
    EXPECT_TRUE(isUtf8(displaysText(facts, DetailLevel::mini)));
}

INSTANTIATE_TEST_SUITE_P(HardwareText, ShowsAHostileName,
                         testing::Values(HostileCase{"newline", "X\nChip: Apple M9", "X\uFFFDChip- Apple M9"},
                                         HostileCase{"escape", "X\x1B[31m", "X\uFFFD[31m"},
                                         HostileCase{"notUtf8", "X\xFF\xC3", "X\uFFFD\uFFFD"},
                                         HostileCase{"trailingColon", "X:", "X-"},
                                         HostileCase{"labelInside", "X Model Name: Y", "X Model Name- Y"},
                                         HostileCase{"lineSeparator", "X\xE2\x80\xA8Y", "X\uFFFDY"}),
                         [](const auto &info) { return info.param.name; });

TEST(HardwareText, GivesNamelessSlotsAndDisplaysAHeading)
{
    HardwareFacts facts = withOneCard({.name = "Card", .displays = {Display{.width = 800, .height = 600}}});
    facts.memory.slots = {MemorySlot{.sizeBytes = 1024}};

    EXPECT_THAT(memoryText(facts, DetailLevel::mini), HasSubstr("\n        DIMM:\n\n"));
    EXPECT_THAT(displaysText(facts, DetailLevel::full),
                HasSubstr("\n        Display:\n          Resolution: 800 x 600\n"));
}

TEST(HardwareText, HoldsNoWordThatTellsSystemsApart)
{
    constexpr std::array kWords{"ext2",  "ext3", "ext4", "btrfs", "xfs",       "zfs",    "ntfs",   "windows",
                                "linux", "bsd",  "hfs",  "apfs",  "microsoft", "ubuntu", "debian", "macos"};
    const HardwareFacts facts = sampleNotebook();
    const std::string text = lowerCased(hardwareText(facts, DetailLevel::full) + memoryText(facts, DetailLevel::full) +
                                        displaysText(facts, DetailLevel::full));

    for (const std::string_view word : kWords)
        EXPECT_THAT(text, Not(HasSubstr(word)));
}

} // namespace
} // namespace brindle::tools
