#include "SmbiosTable.h"

#include "hardware/Smbios.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint16_t kArray = 0x1000;
constexpr std::uint64_t kMebibyte = std::uint64_t{1} << 20;

MemorySlot onlySlot(const SmbiosStructure &device)
{
    const std::vector<MemorySlot> slots = memorySlots(smbiosTable({systemMemoryArray(kArray), device}));
    return slots.size() == 1 ? slots.front() : MemorySlot{.name = "not one slot"};
}

TEST(Smbios, ReadsAModule)
{
    const MemorySlot slot = onlySlot(memoryDevice(kArray));

    EXPECT_EQ(slot.name, "BANK 0/ChannelA-DIMM0");
    EXPECT_EQ(slot.sizeBytes, 8192 * kMebibyte);
    EXPECT_EQ(slot.type, "DDR4");
    EXPECT_EQ(slot.speedMegahertz, 2667);
    EXPECT_EQ(slot.manufacturer, "Samsung");
    EXPECT_EQ(slot.partNumber, "M471A1K43DB1-CWE");
    EXPECT_EQ(slot.serialNumber, "12345678");
}

struct SizeCase {
    const char *name;
    std::uint64_t size;
    std::uint64_t extendedSize;
    std::uint64_t bytes;
};

class ReadsTheSize : public testing::TestWithParam<SizeCase> {};

TEST_P(ReadsTheSize, InTheUnitOfItsForm)
{
    const MemorySlot slot =
        onlySlot(memoryDevice(kArray).with(0x0C, 2, GetParam().size).with(0x1C, 4, GetParam().extendedSize));

    EXPECT_EQ(slot.sizeBytes, GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Smbios, ReadsTheSize,
                         testing::Values(SizeCase{"emptySocket", 0, 0, 0},
                                         SizeCase{"mebibytes", 1024, 0, 1024 * kMebibyte},
                                         SizeCase{"kibibytes", 0x8000 | 512, 0, kMebibyte / 2},
                                         SizeCase{"extended", 0x7FFF, 65536, 65536 * kMebibyte},
                                         SizeCase{"reservedBit", 0x7FFF, 0x80000001, kMebibyte}),
                         [](const auto &info) { return info.param.name; });

TEST(Smbios, LeavesAModuleOfUnknownSizeOut)
{
    const SmbiosStructure device = memoryDevice(kArray).with(0x0C, 2, 0xFFFF);

    EXPECT_THAT(memorySlots(smbiosTable({systemMemoryArray(kArray), device})), IsEmpty());
}

TEST(Smbios, TakesTheRatedSpeedWhereTheConfiguredOneIsUnknown)
{
    EXPECT_EQ(onlySlot(memoryDevice(kArray).with(0x20, 2, 0)).speedMegahertz, 3200);
}

TEST(Smbios, BelievesNoAbsurdSpeedOrSize)
{
    const SmbiosStructure fast = memoryDevice(kArray).with(0x20, 2, 0xFFFF).with(0x58, 4, 0x7FFFFFFF);
    const SmbiosStructure big = memoryDevice(kArray).with(0x0C, 2, 0x7FFF).with(0x1C, 4, 0x7FFFFFFF);

    EXPECT_EQ(onlySlot(fast).speedMegahertz, 3200);
    EXPECT_TRUE(memorySlots(smbiosTable({systemMemoryArray(kArray), big})).empty());
}

TEST(Smbios, ReadsASpeedThatDoesNotFitItsField)
{
    EXPECT_EQ(onlySlot(memoryDevice(kArray).with(0x20, 2, 0xFFFF).with(0x58, 4, 70000)).speedMegahertz, 70000);
}

TEST(Smbios, KnowsNoNameForAReservedType)
{
    EXPECT_EQ(onlySlot(memoryDevice(kArray).with(0x12, 1, 0xEE)).type, "");
}

TEST(Smbios, ReadsTheShortStructureOfOldFirmware)
{
    const SmbiosStructure device = SmbiosStructure(17, 0x15, 0x1100)
                                       .with(0x04, 2, kArray)
                                       .with(0x0C, 2, 512)
                                       .withText(0x10, "DIMM1")
                                       .with(0x12, 1, 0x13);

    const MemorySlot slot = onlySlot(device);

    EXPECT_EQ(slot.name, "DIMM1");
    EXPECT_EQ(slot.type, "DDR2");
    EXPECT_EQ(slot.speedMegahertz, 0);
    EXPECT_EQ(slot.serialNumber, "");
}

TEST(Smbios, LeavesTheChipOfTheFirmwareItselfOut)
{
    constexpr std::uint16_t kFlashArray = 0x1001;
    const SmbiosStructure flashArray = systemMemoryArray(kFlashArray).with(0x05, 1, 5);

    const auto slots = memorySlots(
        smbiosTable({systemMemoryArray(kArray), flashArray, memoryDevice(kFlashArray), memoryDevice(kArray)}));

    EXPECT_THAT(slots, SizeIs(1));
}

TEST(Smbios, TakesFillersForUnknown)
{
    const SmbiosStructure device = SmbiosStructure(17, 0x5C, 0x1100)
                                       .with(0x0C, 2, 1024)
                                       .withText(0x10, "DIMM 0")
                                       .withText(0x11, "Not Specified")
                                       .withText(0x17, " Unknown ")
                                       .withText(0x18, "00000000");

    const MemorySlot slot = onlySlot(device);

    EXPECT_EQ(slot.name, "DIMM 0");
    EXPECT_EQ(slot.manufacturer, "");
    EXPECT_EQ(slot.serialNumber, "");
}

TEST(Smbios, ReadsNoTextBeyondTheLastOne)
{
    EXPECT_EQ(onlySlot(memoryDevice(kArray).with(0x17, 1, 200)).manufacturer, "");
}

TEST(Smbios, StopsAtTheEndOfTheTable)
{
    const std::string table = smbiosTable({systemMemoryArray(kArray), memoryDevice(kArray)});

    EXPECT_THAT(memorySlots(table + memoryDevice(kArray).bytes()), SizeIs(1));
}

TEST(Smbios, ReadsTheWholeStructuresOfATruncatedTable)
{
    const std::string firstTwo = systemMemoryArray(kArray).bytes() + memoryDevice(kArray).bytes();
    const std::string third = memoryDevice(kArray).bytes();

    for (std::size_t length = 0; length < third.size(); ++length)
        EXPECT_THAT(memorySlots(firstTwo + third.substr(0, length)), SizeIs(1)) << length;
}

TEST(Smbios, StopsAtAStructureShorterThanItsHeader)
{
    std::string broken = memoryDevice(kArray).bytes();
    broken[1] = 3;

    EXPECT_THAT(memorySlots(broken + memoryDevice(kArray).bytes()), IsEmpty());
}

TEST(Smbios, ReadsNothingFromOtherBytes)
{
    EXPECT_THAT(memorySlots(""), IsEmpty());
    EXPECT_THAT(memorySlots(std::string(4096, '\xFF')), IsEmpty());
    EXPECT_THAT(memorySlots(std::string(4096, '\0')), IsEmpty());
}

} // namespace
} // namespace brindle::tools
