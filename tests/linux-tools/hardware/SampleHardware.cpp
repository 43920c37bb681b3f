#include "SampleHardware.h"

namespace brindle::tools {
namespace {

constexpr std::uint64_t kGibibyte = std::uint64_t{1} << 30;

MemorySlot filledSlot()
{
    return {.name = "BANK 0/ChannelA-DIMM0",
            .sizeBytes = 16 * kGibibyte,
            .type = "DDR4",
            .speedMegahertz = 2667,
            .manufacturer = "Micron",
            .partNumber = "8ATF1G64HZ-2G6E1",
            .serialNumber = "0x1A2B3C4D"};
}

GraphicsCard builtInCard()
{
    return {.name = "Intel UHD Graphics 630",
            .vendor = "Intel",
            .vendorId = 0x8086,
            .deviceId = 0x3e9b,
            .isBuiltIn = true,
            .memoryBytes = 1536 * (kGibibyte / 1024),
            .sharesMainMemory = true,
            .displays = {{.name = "Color LCD", .width = 2880, .height = 1800, .isBuiltIn = true}}};
}

GraphicsCard slotCard()
{
    return {.name = "AMD Radeon Pro 560X",
            .vendor = "AMD",
            .vendorId = 0x1002,
            .deviceId = 0x67ef,
            .memoryBytes = 4 * kGibibyte,
            .displays = {{.name = "DELL U2720Q",
                          .width = 3840,
                          .height = 2160,
                          .refreshHertz = 60,
                          .connection = "DisplayPort",
                          .serialNumber = "ABC1234"}}};
}

} // namespace

HardwareFacts sampleNotebook()
{
    return {.modelName = "MacBook Pro",
            .modelIdentifier = "MacBookPro15,3",
            .serialNumber = "C02XL0AAJGH5",
            .processor = {.name = "Intel Core i7-8850H", .speedMegahertz = 2600, .packages = 1, .cores = 6},
            .memory = {.sizeBytes = 16 * kGibibyte, .slots = {filledSlot(), {.name = "BANK 2/ChannelB-DIMM0"}}},
            .graphics = {builtInCard(), slotCard()}};
}

HardwareFacts sampleSystemOnAChip()
{
    return {.modelName = "MacBook Air",
            .modelIdentifier = "MacBookAir10,1",
            .serialNumber = "FVFDT0AAQ6L4",
            .processor = {.chip = "Apple M1", .cores = 8},
            .memory = {.sizeBytes = 16 * kGibibyte, .type = "LPDDR4"},
            .graphics = {{.name = "Apple M1", .vendor = "Apple", .vendorId = 0x106b, .isBuiltIn = true}}};
}

} // namespace brindle::tools
