#include "FakeRoot.h"
#include "LabelReader.h"
#include "SampleEdid.h"
#include "SmbiosTable.h"

#include "base/Text.h"
#include "hardware/HardwareText.h"
#include "hardware/KernelHardware.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace brindle::tools {
namespace {

using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr std::uint64_t kMebibyte = std::uint64_t{1} << 20;
constexpr std::uint64_t kGibibyte = std::uint64_t{1} << 30;
const std::filesystem::path kDmi = "sys/class/dmi/id";
const std::filesystem::path kPci = "sys/bus/pci/devices";
const std::filesystem::path kMemoryBlocks = "sys/devices/system/memory";
const std::filesystem::path kFirstProcessor = "sys/devices/system/cpu/cpu0";

HardwareFacts read(const FakeRoot &root)
{
    return KernelHardware(root.path()).read();
}

void addCard(FakeRoot &root, const std::filesystem::path &address, std::string_view vendor, std::string_view device,
             std::string_view pciClass = "0x030000\n")
{
    root.with(kPci / address / "class", pciClass)
        .with(kPci / address / "vendor", vendor)
        .with(kPci / address / "device", device);
}

TEST(KernelHardware, KnowsNothingOfAnEmptyRoot)
{
    const FakeRoot root;

    const HardwareFacts facts = read(root);

    EXPECT_EQ(facts.modelName, "");
    EXPECT_EQ(facts.processor.cores, 0);
    EXPECT_EQ(facts.memory.sizeBytes, 0);
    EXPECT_THAT(facts.graphics, IsEmpty());
}

struct ModelCase {
    const char *name;
    const char *vendor;
    const char *family;
    const char *product;
    const char *version;
    const char *modelName;
    const char *identifier;
};

class ReadsTheModel : public testing::TestWithParam<ModelCase> {};

TEST_P(ReadsTheModel, FromWhereItsMakerPutsIt)
{
    FakeRoot root;
    root.with(kDmi / "sys_vendor", GetParam().vendor)
        .with(kDmi / "product_family", GetParam().family)
        .with(kDmi / "product_name", GetParam().product)
        .with(kDmi / "product_version", GetParam().version)
        .with(kDmi / "board_vendor", "ASRock\n")
        .with(kDmi / "board_name", "B550M Pro4\n");

    const HardwareFacts facts = read(root);

    EXPECT_EQ(facts.modelName, GetParam().modelName);
    EXPECT_EQ(facts.modelIdentifier, GetParam().identifier);
}

INSTANTIATE_TEST_SUITE_P(
    KernelHardware, ReadsTheModel,
    testing::Values(ModelCase{"apple", "Apple Inc.\n", "MacBook Pro\n", "MacBookPro11,4\n", "1.0\n", "MacBook Pro",
                              "MacBookPro11,4"},
                    ModelCase{"lenovo", "LENOVO\n", "ThinkPad X1\n", "20XWCTO1WW\n", "ThinkPad X1 Carbon Gen 9\n",
                              "ThinkPad X1 Carbon Gen 9", "20XWCTO1WW"},
                    ModelCase{"lenovoWithoutVersion", "LENOVO\n", "\n", "20XWCTO1WW\n", "Not Defined\n", "20XWCTO1WW",
                              "20XWCTO1WW"},
                    ModelCase{"other", "Dell Inc.\n", "XPS\n", "XPS 13 9310\n", "\n", "XPS 13 9310", "XPS 13 9310"},
                    ModelCase{"boardAlone", "To Be Filled By O.E.M.\n", "\n", "To Be Filled By O.E.M.\n",
                              "Default string\n", "ASRock B550M Pro4", "B550M Pro4"}),
    [](const auto &info) { return info.param.name; });

TEST(KernelHardware, ReadsTheSerialNumber)
{
    FakeRoot root;
    root.with(kDmi / "product_name", "XPS\n").with(kDmi / "product_serial", "ABC1234\n");

    EXPECT_EQ(read(root).serialNumber, "ABC1234");
}

TEST(KernelHardware, TakesAFillerForNoSerialNumber)
{
    FakeRoot root;
    root.with(kDmi / "product_name", "XPS\n").with(kDmi / "product_serial", "System Serial Number\n");

    EXPECT_EQ(read(root).serialNumber, "");
}

TEST(KernelHardware, ReadsTheDeviceTreeOfAMachineWithoutDmi)
{
    FakeRoot root;
    root.with("sys/firmware/devicetree/base/model", std::string_view("Raspberry Pi 5 Model B\0", 23))
        .with("sys/firmware/devicetree/base/compatible", std::string_view("raspberrypi,5\0brcm,bcm2712\0", 27))
        .with("sys/firmware/devicetree/base/serial-number", std::string_view("10000000abcdef\0", 15));

    const HardwareFacts facts = read(root);

    EXPECT_EQ(facts.modelName, "Raspberry Pi 5 Model B");
    EXPECT_EQ(facts.modelIdentifier, "raspberrypi,5");
    EXPECT_EQ(facts.serialNumber, "10000000abcdef");
}

struct SpeedFileCase {
    const char *name;
    const char *file;
    const char *content;
    std::uint64_t megahertz;
};

class ReadsTheSpeed : public testing::TestWithParam<SpeedFileCase> {};

TEST_P(ReadsTheSpeed, OfAProcessorWhoseNameLacksIt)
{
    FakeRoot root;
    root.with("proc/cpuinfo", "processor\t: 0\nmodel name\t: AMD Ryzen 7 5800X 8-Core Processor\n")
        .with(kFirstProcessor / GetParam().file, GetParam().content);

    EXPECT_EQ(read(root).processor.speedMegahertz, GetParam().megahertz);
}

INSTANTIATE_TEST_SUITE_P(KernelHardware, ReadsTheSpeed,
                         testing::Values(SpeedFileCase{"base", "cpufreq/base_frequency", "3800000\n", 3800},
                                         SpeedFileCase{"nominal", "acpi_cppc/nominal_freq", "3801\n", 3801},
                                         SpeedFileCase{"highest", "cpufreq/cpuinfo_max_freq", "4850000\n", 4850},
                                         SpeedFileCase{"absurd", "cpufreq/base_frequency", "18446744073709551615\n", 0},
                                         SpeedFileCase{"noNumber", "cpufreq/base_frequency", "fast\n", 0}),
                         [](const auto &info) { return info.param.name; });

TEST(KernelHardware, ReadsTheModulesThatRootMayRead)
{
    FakeRoot root;
    root.with("sys/firmware/dmi/tables/DMI",
              smbiosTable({systemMemoryArray(0x1000), memoryDevice(0x1000), memoryDevice(0x1000)}));

    const Memory memory = read(root).memory;

    EXPECT_THAT(memory.slots, SizeIs(2));
    EXPECT_EQ(memory.sizeBytes, 16 * kGibibyte);
}

// The form is that of udev's program dmi_memory_id, version 252.
TEST(KernelHardware, ReadsTheModulesThatUdevKeepsForEverybody)
{
    FakeRoot root;
    root.with("run/udev/data/+dmi:id", "I:3110442\n"
                                       "E:MEMORY_DEVICE_0_SIZE=8589934592\n"
                                       "E:MEMORY_DEVICE_0_LOCATOR=ChannelA-DIMM0\n"
                                       "E:MEMORY_DEVICE_0_BANK_LOCATOR=BANK 0\n"
                                       "E:MEMORY_DEVICE_0_TYPE=DDR4\n"
                                       "E:MEMORY_DEVICE_0_SPEED_MTS=3200\n"
                                       "E:MEMORY_DEVICE_0_CONFIGURED_SPEED_MTS=2667\n"
                                       "E:MEMORY_DEVICE_1_PRESENT=0\n"
                                       "E:MEMORY_DEVICE_1_LOCATOR=ChannelB-DIMM0\n"
                                       "E:MEMORY_DEVICE_1_TYPE=Unknown\n"
                                       "E:MEMORY_DEVICE_1_MANUFACTURER=Not Specified\n"
                                       "E:MEMORY_ARRAY_NUM_DEVICES=2\nV:1\n");

    const HardwareFacts facts = read(root);

    ASSERT_THAT(facts.memory.slots, SizeIs(2));
    EXPECT_EQ(facts.memory.slots[0].name, "BANK 0/ChannelA-DIMM0");
    EXPECT_EQ(facts.memory.slots[1].sizeBytes, 0);
    EXPECT_EQ(facts.memory.slots[1].manufacturer, "");
    EXPECT_EQ(typeAndSpeed(memoryText(facts, DetailLevel::mini)), "DDR4 2667 MHz");
}

TEST(KernelHardware, TellsTheSameOfTheModulesToRootAndToOthers)
{
    const SmbiosStructure plainMemory =
        SmbiosStructure(17, 0x5C, 0x1100).with(0x0C, 2, 1536).withText(0x10, "DIMM 0").with(0x12, 1, 0x07);
    FakeRoot roots;
    roots.with("sys/firmware/dmi/tables/DMI", smbiosTable({plainMemory}));
    FakeRoot others;
    others.with("run/udev/data/+dmi:id", "E:MEMORY_DEVICE_0_SIZE=1610612736\nE:MEMORY_DEVICE_0_LOCATOR=DIMM 0\n"
                                         "E:MEMORY_DEVICE_0_BANK_LOCATOR=Not Specified\nE:MEMORY_DEVICE_0_TYPE=RAM\n"
                                         "E:MEMORY_ARRAY_NUM_DEVICES=1\n");

    const std::string text = memoryText(read(roots), DetailLevel::full);

    EXPECT_EQ(text, memoryText(read(others), DetailLevel::full));
    EXPECT_THAT(text, HasSubstr("Size: 1536 MB\n          Status: OK\n"));
}

TEST(KernelHardware, LeavesTheChipOfTheFirmwareOutOfWhatUdevKeeps)
{
    FakeRoot root;
    root.with("run/udev/data/+dmi:id", "E:MEMORY_DEVICE_0_SIZE=8388608\nE:MEMORY_DEVICE_0_TYPE=Flash\n"
                                       "E:MEMORY_ARRAY_NUM_DEVICES=1\n");

    EXPECT_THAT(read(root).memory.slots, IsEmpty());
}

TEST(KernelHardware, BelievesNoAbsurdNumberOfSlots)
{
    FakeRoot root;
    root.with("run/udev/data/+dmi:id", "E:MEMORY_ARRAY_NUM_DEVICES=18446744073709551615\n");

    EXPECT_THAT(read(root).memory.slots, SizeIs(1024));
}

TEST(KernelHardware, BelievesNoAbsurdModule)
{
    FakeRoot root;
    root.with("run/udev/data/+dmi:id", "E:MEMORY_ARRAY_NUM_DEVICES=2\nE:MEMORY_DEVICE_0_SIZE=18446744073709551615\n"
                                       "E:MEMORY_DEVICE_1_SIZE=1073741824\nE:MEMORY_DEVICE_1_SPEED_MTS=3200\n"
                                       "E:MEMORY_DEVICE_1_CONFIGURED_SPEED_MTS=4294967295\n");

    const Memory memory = read(root).memory;

    ASSERT_THAT(memory.slots, SizeIs(1));
    EXPECT_EQ(memory.slots[0].speedMegahertz, 3200);
    EXPECT_EQ(memory.sizeBytes, kGibibyte);
}

TEST(KernelHardware, BelievesNoAbsurdSumOfModules)
{
    std::string properties = "E:MEMORY_ARRAY_NUM_DEVICES=1024\n";
    for (int slot = 0; slot < 1024; ++slot)
        properties += fmt::format("E:MEMORY_DEVICE_{}_SIZE={}\n", slot, std::uint64_t{1} << 46);
    FakeRoot root;
    root.with("run/udev/data/+dmi:id", properties).with("proc/meminfo", "MemTotal: 1048576 kB\n");

    EXPECT_EQ(read(root).memory.sizeBytes, kGibibyte);
}

struct MemoryCase {
    const char *name;
    const char *blockBytes;
    const char *memInfo;
};

class BelievesNoAbsurdMemory : public testing::TestWithParam<MemoryCase> {};

TEST_P(BelievesNoAbsurdMemory, OfTheKernel)
{
    FakeRoot root;
    root.with(kMemoryBlocks / "block_size_bytes", GetParam().blockBytes)
        .with(kMemoryBlocks / "memory0/state", "online\n")
        .with(kMemoryBlocks / "memory1/state", "online\n")
        .with("proc/meminfo", GetParam().memInfo);

    EXPECT_EQ(read(root).memory.sizeBytes, 0);
}

INSTANTIATE_TEST_SUITE_P(KernelHardware, BelievesNoAbsurdMemory,
                         testing::Values(MemoryCase{"blocks", "ffffffffffffffff\n", ""},
                                         MemoryCase{"blocksThatEndAtZero", "8000000000000001\n", ""},
                                         MemoryCase{"total", "", "MemTotal: 18446744073709551615 kB\n"},
                                         MemoryCase{"totalThatEndsAtZero", "", "MemTotal: 18014398509481985 kB\n"}),
                         [](const auto &info) { return info.param.name; });

TEST(KernelHardware, BelievesNoAbsurdCardAndDisplay)
{
    FakeRoot root;
    addCard(root, "0000:00:02.0", "0x8086\n", "0x3e92\n");
    root.with(kPci / "0000:00:02.0" / "mem_info_vram_total", "18446744073709551615\n")
        .with(kPci / "0000:00:02.0" / "drm/card0/card0-eDP-1/status", "connected\n")
        .with(kPci / "0000:00:02.0" / "drm/card0/card0-eDP-1/modes", "18446744073709551615x1080\n");

    const HardwareFacts facts = read(root);

    ASSERT_THAT(facts.graphics, SizeIs(1));
    EXPECT_EQ(facts.graphics[0].memoryBytes, 0);
    ASSERT_THAT(facts.graphics[0].displays, SizeIs(1));
    EXPECT_EQ(facts.graphics[0].displays[0].width, 0);
}

TEST(KernelHardware, CountsTheMemoryInBlocksWhereNoModuleIsKnown)
{
    FakeRoot root;
    root.with(kMemoryBlocks / "block_size_bytes", "8000000\n")
        .with(kMemoryBlocks / "memory0/state", "online\n")
        .with(kMemoryBlocks / "memory1/state", "offline\n")
        .with(kMemoryBlocks / "memory32/state", "online\n")
        .with("proc/meminfo", "MemTotal: 200000 kB\n");

    EXPECT_EQ(read(root).memory.sizeBytes, 256 * kMebibyte);
}

TEST(KernelHardware, RoundsUpWhatTheKernelLeavesOfTheMemory)
{
    FakeRoot root;
    root.with("proc/meminfo", "MemTotal:       16211652 kB\nMemFree:        23085288 kB\n");

    EXPECT_EQ(read(root).memory.sizeBytes, 16 * kGibibyte);
}

TEST(KernelHardware, ListsTheCardsByTheirAddresses)
{
    FakeRoot root;
    addCard(root, "0000:01:00.0", "0x1002\n", "0x67df\n", "0x038000\n");
    addCard(root, "0000:00:02.0", "0x8086\n", "0x3e92\n");
    addCard(root, "0000:00:1f.6", "0x8086\n", "0x15bc\n", "0x020000\n");
    root.with(kPci / "0000:01:00.0" / "mem_info_vram_total", "8589934592\n");

    const HardwareFacts facts = read(root);

    EXPECT_THAT(facts.graphics,
                ElementsAre(Field(&GraphicsCard::isBuiltIn, true), Field(&GraphicsCard::isBuiltIn, false)));
    EXPECT_EQ(cards(displaysText(facts, DetailLevel::mini)), "Intel Graphics (0x3e92), AMD Graphics (0x67df) 8 GB");
}

TEST(KernelHardware, TakesASecondHeadForNoSecondCard)
{
    FakeRoot root;
    addCard(root, "0000:00:02.0", "0x8086\n", "0x2a42\n");
    addCard(root, "0000:00:02.1", "0x8086\n", "0x2a43\n", "0x038000\n");

    EXPECT_THAT(read(root).graphics, SizeIs(1));
}

TEST(KernelHardware, NamesACardByUdevBeforeTheDatabaseOfItsOwnPackage)
{
    constexpr std::string_view kDatabase = "#\n8086  Intel Corporation\n\t3e92  From the file\n\t3e98  Also there\n";
    FakeRoot root;
    addCard(root, "0000:00:02.0", "0x8086\n", "0x3e92\n");
    addCard(root, "0000:00:03.0", "0x8086\n", "0x3e98\n");
    root.with("usr/share/misc/pci.ids", kDatabase)
        .with("run/udev/data/+pci:0000:00:02.0", "E:ID_MODEL_FROM_DATABASE=CoffeeLake-S GT2 [UHD Graphics 630]\n");

    EXPECT_EQ(cards(displaysText(read(root), DetailLevel::mini)), "Intel UHD Graphics 630, Intel Also there");
}

TEST(KernelHardware, ReadsTheDisplaysThatArePluggedIn)
{
    FakeRoot root;
    addCard(root, "0000:00:02.0", "0x8086\n", "0x3e92\n");
    const auto drm = kPci / "0000:00:02.0" / "drm";
    root.with(drm / "card0/card0-eDP-1/status", "connected\n")
        .with(drm / "card0/card0-eDP-1/edid", "garbage")
        .with(drm / "card0/card0-eDP-1/modes", "1920x1080\n1280x720\n")
        .with(drm / "card0/card0-HDMI-A-1/status", "connected\n")
        .with(drm / "card0/card0-HDMI-A-1/edid", sampleEdid("DELL U2720Q", "ABC1234"))
        .with(drm / "card0/card0-DP-1/status", "disconnected\n")
        .with(drm / "renderD128/dev", "226:128\n");

    const HardwareFacts facts = read(root);

    ASSERT_THAT(facts.graphics, SizeIs(1));
    ASSERT_THAT(facts.graphics[0].displays, SizeIs(2));
    const Display &plugged = facts.graphics[0].displays[0];
    const Display &builtIn = facts.graphics[0].displays[1];
    EXPECT_EQ(plugged.name, "DELL U2720Q");
    EXPECT_EQ(plugged.connection, "HDMI");
    EXPECT_TRUE(builtIn.isBuiltIn);
    EXPECT_EQ(builtIn.width, 1920);
    EXPECT_EQ(builtIn.height, 1080);
}

TEST(KernelHardware, IsPrintedAsPlainLinesHoweverHostileTheFirmware)
{
    constexpr std::string_view kHostile = "\x1B[2J\xFF\nSerial Number: 1\nChip: Apple M9:";
    FakeRoot root;
    root.with(kDmi / "product_name", kHostile)
        .with(kDmi / "product_serial", kHostile)
        .with("run/udev/data/+dmi:id", "E:MEMORY_ARRAY_NUM_DEVICES=1\nE:MEMORY_DEVICE_0_SIZE=1024\n"
                                       "E:MEMORY_DEVICE_0_MANUFACTURER=D\x07\xC3\nE:MEMORY_DEVICE_0_LOCATOR=\xFE:\n");

    const HardwareFacts facts = read(root);
    const std::string hardware = hardwareText(facts, DetailLevel::full);
    const std::string memory = memoryText(facts, DetailLevel::full);

    EXPECT_TRUE(isUtf8(hardware));
    EXPECT_TRUE(isUtf8(memory));
    EXPECT_EQ(labelled(hardware, "Chip:"), "");
    EXPECT_EQ(labelled(hardware, "Serial Number:"), "");
    EXPECT_THAT(hardware + memory, Not(HasSubstr("\x1B")));
    EXPECT_EQ(labelled(memory, "Manufacturer:"), "D\uFFFD\uFFFD");
}

} // namespace
} // namespace brindle::tools
