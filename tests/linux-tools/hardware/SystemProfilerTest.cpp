#include "LabelReader.h"

#include "linux-tools/machine/TestMachine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr std::string_view kMachine = R"({"hardware": {
  "modelName": "iMac", "modelIdentifier": "iMac19,1", "serialNumber": "C02YK0AAJV3Q",
  "processor": {"name": "Intel Core i9", "speedMegahertz": 3600, "packages": 1, "cores": 8},
  "memory": {"sizeBytes": 17179869184, "slots": [
    {"name": "BANK 0/DIMM0", "sizeBytes": 17179869184, "type": "DDR4", "speedMegahertz": 2667}]},
  "graphics": [{"name": "Radeon Pro 580X", "memoryBytes": 8589934592}, {"name": "Radeon RX 570"}]}})";

/// The program itself, in the place that it has in a simulated machine.
class SystemProfiler : public testing::Test {
protected:
    SystemProfiler()
    {
        machine.install("usr/sbin/system_profiler", SYSTEM_PROFILER);
        machine.write(kMachine);
    }

    Outcome run(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), (machine.root() / "usr/sbin/system_profiler").string());
        return runProgram(arguments);
    }

    const TestMachine machine;
};

TEST_F(SystemProfiler, TellsTheModelOfTheSimulatedMachine)
{
    const Outcome outcome = run({"SPHardwareDataType"});

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(labelled(outcome.output, "Model Name:"), "iMac");
    EXPECT_EQ(labelled(outcome.output, "Model Identifier:"), "iMac19,1");
    EXPECT_EQ(labelled(outcome.output, "Serial Number (system):"), "C02YK0AAJV3Q");
    EXPECT_EQ(labelled(outcome.output, "Processor Name:"), "Intel Core i9");
    EXPECT_EQ(labelled(outcome.output, "Processor Speed:"), "3.6 GHz");
    EXPECT_EQ(labelled(outcome.output, "Total Number of Cores:"), "8");
    EXPECT_EQ(labelled(outcome.output, "Memory:"), "16 GB");
}

TEST_F(SystemProfiler, TellsTheMemoryOfTheSimulatedMachine)
{
    EXPECT_EQ(typeAndSpeed(run({"SPMemoryDataType", "-detailLevel", "mini"}).output), "DDR4 2667 MHz");
}

TEST_F(SystemProfiler, TellsTheCardsOfTheSimulatedMachine)
{
    EXPECT_EQ(cards(run({"SPDisplaysDataType", "-detailLevel", "mini"}).output), "Radeon Pro 580X 8 GB, Radeon RX 570");
}

TEST_F(SystemProfiler, TellsOfThisMachineWhereNoMachineFileIs)
{
    const Outcome outcome = runProgram({SYSTEM_PROFILER, "SPHardwareDataType"});

    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith("Hardware:\n\n    Hardware Overview:\n\n"));
    EXPECT_NE(labelled(outcome.output, "Total Number of Cores:"), "");
}

TEST_F(SystemProfiler, NamesABrokenMachineFileAndPrintsNothing)
{
    machine.write("{\"hardware\": ");

    const Outcome outcome = run({"SPHardwareDataType"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, StartsWith("system_profiler: " + machine.file().path().string() + ":1: "));
}

TEST_F(SystemProfiler, RefusesAnUnknownDataType)
{
    const Outcome outcome = run({"SPNothingDataType"});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, StartsWith("system_profiler: unknown data type: SPNothingDataType\n"));
}

TEST_F(SystemProfiler, HelpsEvenWithABrokenMachineFile)
{
    machine.write("");

    const Outcome outcome = run({"--help"});

    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith("Usage:  system_profiler "));
}

TEST_F(SystemProfiler, ListsItsDataTypes)
{
    EXPECT_THAT(run({"-listDataTypes"}).output, HasSubstr("\nSPMemoryDataType\n"));
}

} // namespace
} // namespace brindle::tools
