#include "shell/ViewHeightCalculator.h"

#include "base/DefaultsKeys.h"
#include "support/MemoryUserDefaults.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace brindle {
namespace {

constexpr const char *kBarKey = DefaultsKeys::kShowDiskSpaceIndicator;

PhysicalDisk disk(const std::string &identifier, const std::vector<std::optional<std::string>> &labels = {})
{
    PhysicalDisk disk;
    disk.identifier = identifier;
    for (const std::optional<std::string> &label : labels)
        disk.efiPartitions.push_back({.identifier = identifier + "s1", .volumeName = label});
    return disk;
}

PhysicalDisk diskOfBytes(std::optional<std::int64_t> totalSpaceBytes)
{
    PhysicalDisk result = disk("disk0");
    result.totalSpaceBytes = totalSpaceBytes;
    return result;
}

class ViewHeight : public testing::Test {
protected:
    [[nodiscard]] double of(const std::vector<PhysicalDisk> &disks,
                            const std::set<std::string> &expandedDisks = {}) const
    {
        return calculator.contentHeight(disks.size(), expandedDisks, disks);
    }

    MemoryUserDefaults defaults;
    ViewHeightCalculator calculator{defaults};
};

// --- without disks

TEST_F(ViewHeight, IsThatOfTheEmptyViewForACountOfZeroWhateverTheDisksAre)
{
    EXPECT_EQ(of({}), 202);
    EXPECT_EQ(calculator.contentHeight(0, {"disk0"}, {disk("disk0")}), 202);
}

TEST_F(ViewHeight, IsBlankWhileDisksAreCountedAndNotThere)
{
    EXPECT_EQ(calculator.contentHeight(1, {}, {}), 82);
}

// --- rows

TEST_F(ViewHeight, CountsTheGapsBetweenRowsOnly)
{
    EXPECT_EQ(of({disk("disk0")}), 150);
    EXPECT_EQ(of({disk("disk0"), disk("disk1")}), 222);
    EXPECT_EQ(of({disk("disk0"), disk("disk1"), disk("disk2")}), 294);
}

TEST_F(ViewHeight, GoesByTheDisksAndNotByTheirCount)
{
    EXPECT_EQ(calculator.contentHeight(7, {}, {disk("disk0")}), 150);
}

struct BarCase {
    const char *name;
    std::optional<PropertyValue> setting;
    std::optional<std::int64_t> totalSpaceBytes;
    double height;
};

class RowsSpaceBar : public ViewHeight, public testing::WithParamInterface<BarCase> {};

TEST_P(RowsSpaceBar, NeedsTheSettingAndASize)
{
    if (GetParam().setting)
        defaults.set(kBarKey, *GetParam().setting);

    EXPECT_EQ(of({diskOfBytes(GetParam().totalSpaceBytes)}), GetParam().height);
}

INSTANTIATE_TEST_SUITE_P(ViewHeight, RowsSpaceBar,
                         testing::Values(BarCase{"SwitchedOn", true, 1, 177},
                                         BarCase{"SettingNeverWritten", std::nullopt, 1, 150},
                                         BarCase{"SwitchedOff", false, 1, 150},
                                         BarCase{"SettingOfTheNumberOne", 1, 1, 177},
                                         BarCase{"TotalOfZero", true, 0, 150}, BarCase{"NegativeTotal", true, -1, 150},
                                         BarCase{"TotalUnknown", true, std::nullopt, 150}),
                         [](const auto &row) { return row.param.name; });

TEST_F(ViewHeight, IsDecidedForEachRowByItself)
{
    defaults.set(kBarKey, true);

    EXPECT_EQ(of({diskOfBytes(1), diskOfBytes(std::nullopt)}), 95 + 4 + 68 + 82);
}

TEST_F(ViewHeight, ReadsTheSettingAnewEachTime)
{
    defaults.set(kBarKey, true);
    EXPECT_EQ(of({diskOfBytes(1)}), 177);
    defaults.set(kBarKey, false);
    EXPECT_EQ(of({diskOfBytes(1)}), 150);
}

TEST_F(ViewHeight, DoesNotListenToTheKeyThatDiffersByTheCaseOfOneLetter)
{
    defaults.set(DefaultsKeys::kLowerCaseShowDiskSpaceIndicator, true);

    EXPECT_EQ(of({diskOfBytes(1)}), 150);
}

// --- opened rows

struct ExpansionCase {
    const char *name;
    std::vector<std::optional<std::string>> labels; ///< One for each EFI partition.
    double height;
};

class OpenedRow : public ViewHeight, public testing::WithParamInterface<ExpansionCase> {};

TEST_P(OpenedRow, AddsItsPartitions)
{
    EXPECT_EQ(of({disk("disk0", GetParam().labels)}, {"disk0"}), GetParam().height);
}

INSTANTIATE_TEST_SUITE_P(
    ViewHeight, OpenedRow,
    testing::Values(ExpansionCase{"NoPartition", {}, 150}, ExpansionCase{"OnePartitionChangesNothing", {"EFI"}, 150},
                    ExpansionCase{"TwoPartitionsOneWithALabel", {"EFI", std::nullopt}, 243},
                    ExpansionCase{"TwoPartitionsWithoutLabels", {std::nullopt, std::nullopt}, 242},
                    ExpansionCase{"AnEmptyLabelIsNone", {"", ""}, 242},
                    ExpansionCase{"ThreePartitions", {"A", "B", "C"}, 68 + 4 + 3 * 41 + 2 * 4 + 4 + 82}),
    [](const auto &row) { return row.param.name; });

TEST_F(ViewHeight, KeepsClosedRowsClosed)
{
    EXPECT_EQ(of({disk("disk0", {"A", "B"}), disk("disk1", {"A", "B"})}, {"disk1"}), 222 + 4 + 82 + 4 + 4);
}

TEST_F(ViewHeight, PassesOverOpenedDisksThatHaveGone)
{
    EXPECT_EQ(of({disk("disk0", {"A", "B"})}, {"disk7"}), 150);
}

} // namespace
} // namespace brindle
