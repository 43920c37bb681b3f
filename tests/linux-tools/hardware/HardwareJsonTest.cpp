#include "hardware/HardwareJson.h"
#include "linux-tools/machine/TestMachine.h"
#include "machine/JsonObject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

using testing::IsEmpty;
using testing::SizeIs;
using Json = nlohmann::ordered_json;

constexpr std::string_view kWhole = R"({
    "modelName": "MacBook Pro",
    "modelIdentifier": "MacBookPro15,3",
    "serialNumber": "C02XL0AAJGH5",
    "processor": {"name": "Intel Core i7", "speedMegahertz": 2600, "packages": 1, "cores": 6},
    "memory": {"sizeBytes": 17179869184, "type": "LPDDR4", "slots": [
        {"name": "BANK 0/DIMM0", "sizeBytes": 17179869184, "type": "DDR4", "speedMegahertz": 2667,
         "manufacturer": "Micron", "partNumber": "8ATF", "serialNumber": "0x1A2B"},
        {"name": "BANK 1/DIMM0"}]},
    "graphics": [
        {"name": "AMD Radeon Pro 560X", "vendor": "AMD", "vendorId": 4098, "deviceId": 26607, "isBuiltIn": true,
         "memoryBytes": 4294967296, "sharesMainMemory": true, "displays": [
            {"name": "Color LCD", "width": 2880, "height": 1800, "refreshHertz": 60, "connection": "HDMI",
             "isBuiltIn": true, "serialNumber": "F1"}]}]
})";

TEST(HardwareJson, ReadsModelAndProcessor)
{
    const HardwareFacts facts = hardwareFromJson(Json::parse(kWhole));

    EXPECT_EQ(facts.modelName, "MacBook Pro");
    EXPECT_EQ(facts.modelIdentifier, "MacBookPro15,3");
    EXPECT_EQ(facts.serialNumber, "C02XL0AAJGH5");
    EXPECT_EQ(facts.processor.chip, "");
    EXPECT_EQ(facts.processor.name, "Intel Core i7");
    EXPECT_EQ(facts.processor.speedMegahertz, 2600);
    EXPECT_EQ(facts.processor.packages, 1);
    EXPECT_EQ(facts.processor.cores, 6);
}

TEST(HardwareJson, ReadsAChip)
{
    EXPECT_EQ(hardwareFromJson(Json::parse(R"({"processor": {"chip": "Apple M1"}})")).processor.chip, "Apple M1");
}

TEST(HardwareJson, ReadsMemoryAndItsSlots)
{
    const Memory memory = hardwareFromJson(Json::parse(kWhole)).memory;

    EXPECT_EQ(memory.sizeBytes, 17179869184);
    EXPECT_EQ(memory.type, "LPDDR4");
    ASSERT_THAT(memory.slots, SizeIs(2));
    EXPECT_EQ(memory.slots[0].name, "BANK 0/DIMM0");
    EXPECT_EQ(memory.slots[0].sizeBytes, 17179869184);
    EXPECT_EQ(memory.slots[0].type, "DDR4");
    EXPECT_EQ(memory.slots[0].speedMegahertz, 2667);
    EXPECT_EQ(memory.slots[0].manufacturer, "Micron");
    EXPECT_EQ(memory.slots[0].partNumber, "8ATF");
    EXPECT_EQ(memory.slots[0].serialNumber, "0x1A2B");
    EXPECT_EQ(memory.slots[1].sizeBytes, 0);
}

TEST(HardwareJson, ReadsCardsAndTheirDisplays)
{
    const HardwareFacts facts = hardwareFromJson(Json::parse(kWhole));

    ASSERT_THAT(facts.graphics, SizeIs(1));
    const GraphicsCard &card = facts.graphics[0];
    EXPECT_EQ(card.name, "AMD Radeon Pro 560X");
    EXPECT_EQ(card.vendor, "AMD");
    EXPECT_EQ(card.vendorId, 0x1002);
    EXPECT_EQ(card.deviceId, 0x67ef);
    EXPECT_TRUE(card.isBuiltIn);
    EXPECT_EQ(card.memoryBytes, 4294967296);
    EXPECT_TRUE(card.sharesMainMemory);
    ASSERT_THAT(card.displays, SizeIs(1));
    const Display &display = card.displays[0];
    EXPECT_EQ(display.name, "Color LCD");
    EXPECT_EQ(display.width, 2880);
    EXPECT_EQ(display.height, 1800);
    EXPECT_EQ(display.refreshHertz, 60);
    EXPECT_EQ(display.connection, "HDMI");
    EXPECT_TRUE(display.isBuiltIn);
    EXPECT_EQ(display.serialNumber, "F1");
}

TEST(HardwareJson, KnowsNothingFromAnEmptyObject)
{
    const HardwareFacts facts = hardwareFromJson(Json::object());

    EXPECT_EQ(facts.modelName, "");
    EXPECT_THAT(facts.memory.slots, IsEmpty());
    EXPECT_THAT(facts.graphics, IsEmpty());
}

struct FaultCase {
    const char *name;
    const char *hardware;
    const char *path;
};

class NamesTheKey : public testing::TestWithParam<FaultCase> {};

TEST_P(NamesTheKey, ThatIsAtFault)
{
    std::string path = "none";

    try {
        (void)hardwareFromJson(Json::parse(GetParam().hardware));
    } catch (const JsonValueError &error) {
        path = error.path();
    }

    EXPECT_EQ(path, GetParam().path);
}

INSTANTIATE_TEST_SUITE_P(
    HardwareJson, NamesTheKey,
    testing::Values(
        FaultCase{"noObject", R"([])", "hardware"}, FaultCase{"noText", R"({"modelName": 1})", "hardware.modelName"},
        FaultCase{"noNumber", R"({"processor": {"cores": "6"}})", "hardware.processor.cores"},
        FaultCase{"negativeNumber", R"({"memory": {"sizeBytes": -1}})", "hardware.memory.sizeBytes"},
        FaultCase{"noList", R"({"memory": {"slots": {}}})", "hardware.memory.slots"},
        FaultCase{"namelessSlot", R"({"memory": {"slots": [{"name": "A"}, {}]}})", "hardware.memory.slots[1].name"},
        FaultCase{"namelessCard", R"({"graphics": [{}]})", "hardware.graphics[0].name"},
        FaultCase{"wideNumber", R"({"graphics": [{"name": "A", "vendorId": 65536}]})", "hardware.graphics[0].vendorId"},
        FaultCase{"displayNoFlag", R"({"graphics": [{"name": "A", "displays": [{"isBuiltIn": 1}]}]})",
                  "hardware.graphics[0].displays[0].isBuiltIn"}),
    [](const auto &info) { return info.param.name; });

std::string errorOf(const TestMachine &machine)
{
    try {
        (void)readHardware(machine.file());
    } catch (const MachineFileError &error) {
        return error.what();
    }
    return "none";
}

TEST(HardwareJson, NamesFileAndLineOfAFault)
{
    const TestMachine machine;
    machine.write("{\n  \"hardware\": {\n    \"memory\": {\n      \"sizeBytes\": \"much\"}}}\n");

    EXPECT_EQ(errorOf(machine),
              machine.file().path().string() + ":4: hardware.memory.sizeBytes: must be a whole number");
}

TEST(HardwareJson, NamesTheKeyThatTheFileLacks)
{
    const TestMachine machine;
    machine.write("{}\n");

    EXPECT_EQ(errorOf(machine), machine.file().path().string() + ":1: hardware: the key is missing");
}

} // namespace
} // namespace brindle::tools
