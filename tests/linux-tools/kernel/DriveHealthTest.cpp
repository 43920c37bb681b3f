#include "kernel/DriveHealth.h"

#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

/// As SAT-3 lays it out: a header of descriptor sense data, and the descriptor of the registers.
SenseData senseWith(std::uint8_t count, std::uint8_t lbaMiddle, std::uint8_t lbaHigh, std::uint8_t status = 0x50)
{
    SenseData sense{0x72, 0x01, 0x00, 0x1D, 0, 0, 0, 14, 0x09, 0x0C};
    sense[13] = count;
    sense[17] = lbaMiddle;
    sense[19] = lbaHigh;
    sense[21] = status;
    return sense;
}

TEST(DriveHealth, ReadsTheRegistersOfAnAtaCommand)
{
    const auto registers = ataRegisters(senseWith(0xFF, 0x4F, 0xC2));

    ASSERT_TRUE(registers);
    EXPECT_EQ(registers->count, 0xFF);
    EXPECT_EQ(registers->lbaMiddle, 0x4F);
    EXPECT_EQ(registers->lbaHigh, 0xC2);
}

TEST(DriveHealth, TakesNoAnswerOfADriveThatRefusedTheCommand)
{
    constexpr std::uint8_t kError = 0x51;
    constexpr std::uint8_t kFault = 0x70;
    EXPECT_FALSE(ataRegisters(senseWith(0xFF, 0x4F, 0xC2, kError)));
    EXPECT_FALSE(ataRegisters(senseWith(0xFF, 0x4F, 0xC2, kFault)));
}

TEST(DriveHealth, TakesNoAnswerInAnotherForm)
{
    SenseData fixedFormat = senseWith(0xFF, 0x4F, 0xC2);
    fixedFormat[0] = 0x70;
    SenseData otherDescriptor = senseWith(0xFF, 0x4F, 0xC2);
    otherDescriptor[8] = 0x00;

    EXPECT_FALSE(ataRegisters(fixedFormat));
    EXPECT_FALSE(ataRegisters(otherDescriptor));
    EXPECT_FALSE(ataRegisters(SenseData{}));
}

TEST(DriveHealth, TakesADriveInStandbyForAsleep)
{
    EXPECT_TRUE(isAsleep({.count = 0x00}));
    EXPECT_TRUE(isAsleep({.count = 0x01}));
    EXPECT_FALSE(isAsleep({.count = 0x80})); // idle
    EXPECT_FALSE(isAsleep({.count = 0xFF})); // active
}

TEST(DriveHealth, TellsTheHealthOfAnAtaDriveByTheKeyThatItAnswersWith)
{
    EXPECT_EQ(ataHealth(AtaRegisters{.count = 0, .lbaMiddle = 0x4F, .lbaHigh = 0xC2}), Smart::verified);
    EXPECT_EQ(ataHealth(AtaRegisters{.count = 0, .lbaMiddle = 0xF4, .lbaHigh = 0x2C}), Smart::failing);
    EXPECT_EQ(ataHealth(AtaRegisters{}), Smart::notSupported);
}

TEST(DriveHealth, TellsTheHealthOfAnNvmeDriveByItsCriticalWarnings)
{
    EXPECT_EQ(nvmeHealth(HealthLog{0x00}), Smart::verified);
    EXPECT_EQ(nvmeHealth(HealthLog{0x02}), Smart::verified); // too hot
    EXPECT_EQ(nvmeHealth(HealthLog{0x01}), Smart::failing);  // few spare blocks left
    EXPECT_EQ(nvmeHealth(HealthLog{0x04}), Smart::failing);  // unreliable
    EXPECT_EQ(nvmeHealth(HealthLog{0x08}), Smart::failing);  // read-only
    EXPECT_EQ(nvmeHealth(HealthLog{0x06}), Smart::failing);
}

TEST(DriveHealth, IsUnknownOfWhatIsNoDrive)
{
    constexpr int kNoDescriptor = -1;

    EXPECT_FALSE(isAtaDriveAsleep(kNoDescriptor));
    EXPECT_EQ(ataHealth(kNoDescriptor), Smart::notSupported);
    EXPECT_EQ(nvmeHealth(kNoDescriptor), Smart::notSupported);
}

} // namespace
} // namespace brindle::tools
