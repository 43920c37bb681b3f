#include "views/DiskRowContent.h"

#include "base/DefaultsKeys.h"
#include "support/MemoryUserDefaults.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace brindle {

void PrintTo(const Color &color, std::ostream *out)
{
    *out << color.value;
}

void PrintTo(const RowText &text, std::ostream *out)
{
    *out << '"' << text.text << "\" " << text.size << ' ' << static_cast<int>(text.weight) << ' ' << text.color.value;
}

void PrintTo(const RowSymbol &symbol, std::ostream *out)
{
    *out << symbol.name << ' ' << symbol.size << ' ' << symbol.color.value;
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using DiskType = PhysicalDisk::DiskType;

constexpr auto kRegular = FontWeight::regular;
constexpr auto kMedium = FontWeight::medium;
constexpr auto kBold = FontWeight::bold;

DiskRowContent rowOf(PhysicalDisk disk)
{
    return {.disk = std::move(disk), .iconSize = 20};
}

std::vector<std::string> textsOf(const std::vector<RowText> &items)
{
    std::vector<std::string> texts;
    for (const RowText &item : items)
        texts.push_back(item.text);
    return texts;
}

PhysicalDisk bareDisk(DiskType type = DiskType::physicalInternal)
{
    return {.identifier = "disk0", .name = "Example SSD", .size = "500.1 GB", .diskType = type};
}

PhysicalDisk bootDisk()
{
    PhysicalDisk disk = bareDisk();
    disk.isBootDisk = true;
    disk.hasMacOS = true;
    return disk;
}

// --- icon

struct IconCase {
    const char *name;
    PhysicalDisk disk;
    std::string_view symbol;
    std::string_view color;
};

class RowsIcon : public testing::TestWithParam<IconCase> {};

TEST_P(RowsIcon, IsChosenByWhatTheDiskIs)
{
    EXPECT_EQ(rowOf(GetParam().disk).icon(), (RowSymbol{GetParam().symbol, 20, {GetParam().color}}));
}

/// Each disk lacks the findings of those before it.
INSTANTIATE_TEST_SUITE_P(
    DiskRowContent, RowsIcon,
    testing::Values(
        IconCase{"OpenCore",
                 {.diskType = DiskType::physicalInternal,
                  .hasMacOS = true,
                  .hasOpenCore = true,
                  .hasClover = true,
                  .hasWindows = true,
                  .hasLinux = true,
                  .hasExFAT = true},
                 "internaldrive.fill",
                 "#00CCFF"},
        IconCase{"Clover",
                 {.diskType = DiskType::physicalExternal,
                  .hasMacOS = true,
                  .hasClover = true,
                  .hasWindows = true,
                  .hasLinux = true,
                  .hasExFAT = true},
                 "externaldrive.fill",
                 "#00CC00"},
        IconCase{
            "MacOS",
            {.diskType = DiskType::removable, .hasMacOS = true, .hasWindows = true, .hasLinux = true, .hasExFAT = true},
            "externaldrive.connected.to.line.below.fill",
            "blue"},
        IconCase{"Linux",
                 {.diskType = DiskType::diskImage, .hasWindows = true, .hasLinux = true, .hasExFAT = true},
                 "opticaldisc.fill",
                 "purple"},
        IconCase{"Windows",
                 {.diskType = DiskType::physicalInternal, .hasWindows = true, .hasExFAT = true},
                 "internaldrive.fill",
                 "gray"},
        IconCase{"ExFAT", {.diskType = DiskType::physicalInternal, .hasExFAT = true}, "internaldrive.fill", "red"},
        IconCase{"BareInternal", bareDisk(DiskType::physicalInternal), "internaldrive", "primary"},
        IconCase{"BareExternal", bareDisk(DiskType::physicalExternal), "externaldrive", "secondary"},
        IconCase{"BareRemovable", bareDisk(DiskType::removable), "externaldrive.connected.to.line.below", "gray"},
        IconCase{"BareDiskImage", bareDisk(DiskType::diskImage), "opticaldisc", "orange"}),
    [](const auto &row) { return row.param.name; });

TEST(DiskRowContent, DrawsTheBootDiskLargerAndGrayWhateverLiesOnIt)
{
    PhysicalDisk disk = bootDisk();
    disk.hasOpenCore = true;

    EXPECT_EQ(rowOf(disk).icon(), (RowSymbol{"applelogo", 24, Colors::kGray}));
}

TEST(DiskRowContent, DrawsABareRemovableDiskWhiteInTheDark)
{
    DiskRowContent row = rowOf(bareDisk(DiskType::removable));
    row.colorScheme = ColorScheme::dark;

    EXPECT_EQ(row.icon().color, Colors::kWhite);
}

// --- name and label

TEST(DiskRowContent, ShowsNameAndLabelInTheSchemesColour)
{
    DiskRowContent row = rowOf(bareDisk());
    row.disk.volumeName = "System • Work";

    EXPECT_EQ(row.name(), (RowText{"Example SSD", 12, kMedium, Colors::kBlack}));
    EXPECT_EQ(row.volumeLabel(), (RowText{"System • Work", 12, kMedium, Colors::kBlack}));
    row.colorScheme = ColorScheme::dark;
    EXPECT_EQ(row.name(), (RowText{"Example SSD", 12, kMedium, Colors::kWhite}));
    EXPECT_EQ(row.volumeLabel(), (RowText{"System • Work", 12, kMedium, Colors::kWhite}));
}

TEST(DiskRowContent, ShowsNoVolumeLabelForAnEmptyVolumeNameAndForNone)
{
    DiskRowContent row = rowOf(bareDisk());
    const RowText noLabel{"No Volume Label", 12, kMedium, Colors::kSecondary};

    row.disk.volumeName = std::nullopt;
    EXPECT_EQ(row.volumeLabel(), noLabel);
    row.disk.volumeName = "";
    EXPECT_EQ(row.volumeLabel(), noLabel);
    row.colorScheme = ColorScheme::dark;
    EXPECT_EQ(row.volumeLabel(), noLabel);
}

// --- details

TEST(DiskRowContent, TellsSizeTypeIndicatorsAndHealthInThisOrder)
{
    DiskRowContent row = rowOf(bareDisk(DiskType::physicalExternal));
    row.disk.hasMacOS = true;
    row.disk.hasLinux = true;
    row.disk.smartStatus = SMARTStatus::verified;
    row.showSMARTStatus = true;

    EXPECT_THAT(row.details(), ElementsAre(RowText{"500.1 GB", 11, kRegular, Colors::kSecondary},
                                           RowText{"External", 11, kRegular, Colors::kSecondary},
                                           RowText{"macOS", 11, kMedium, Colors::kBlue},
                                           RowText{"Linux", 11, kRegular, Colors::kPurple},
                                           RowText{"SMART OK", 11, kRegular, Colors::kGreen}));
    EXPECT_EQ(DiskRowContent::bullet(), (RowText{"•", 11, kRegular, Colors::kSecondary}));
}

TEST(DiskRowContent, TellsTheBootDisksLabelsInPlaceOfIndicators)
{
    EXPECT_THAT(textsOf(rowOf(bootDisk()).details()), ElementsAre("500.1 GB", "Internal", "Boot Disk"));
}

TEST(DiskRowContent, HasAWordForEachType)
{
    EXPECT_EQ(rowOf(bareDisk(DiskType::physicalInternal)).typeLabel().text, "Internal");
    EXPECT_EQ(rowOf(bareDisk(DiskType::physicalExternal)).typeLabel().text, "External");
    EXPECT_EQ(rowOf(bareDisk(DiskType::removable)).typeLabel().text, "Removable");
    EXPECT_EQ(rowOf(bareDisk(DiskType::diskImage)).typeLabel().text, "Disk Image");
}

// --- indicators

struct IndicatorCase {
    const char *name;
    PhysicalDisk disk;
    std::vector<RowText> indicators;
};

class RowsIndicators : public testing::TestWithParam<IndicatorCase> {};

TEST_P(RowsIndicators, TellWhatLiesOnTheDisk)
{
    EXPECT_EQ(rowOf(GetParam().disk).indicators(), GetParam().indicators);
}

INSTANTIATE_TEST_SUITE_P(
    DiskRowContent, RowsIndicators,
    testing::Values(IndicatorCase{"OpenCoreAndCloverInThisOrder",
                                  {.hasOpenCore = true, .hasClover = true},
                                  {{"OC", 11, kMedium, Colors::kOpenCore}, {"Clover", 11, kRegular, Colors::kGreen}}},
                    IndicatorCase{
                        "MacOSAloneWithoutUnknown", {.hasMacOS = true}, {{"macOS", 11, kMedium, Colors::kBlue}}},
                    IndicatorCase{"WindowsLinuxAndExFATAsOne",
                                  {.hasWindows = true, .hasLinux = true, .hasExFAT = true},
                                  {{"Windows ExFAT", 11, kMedium, Colors::kGray}}},
                    IndicatorCase{"LinuxAndExFATAsOne",
                                  {.hasLinux = true, .hasExFAT = true},
                                  {{"Linux ExFAT", 11, kMedium, Colors::kPurple}}},
                    IndicatorCase{"WindowsAndThenLinux",
                                  {.hasWindows = true, .hasLinux = true},
                                  {{"Windows", 11, kMedium, Colors::kGray}, {"Linux", 11, kRegular, Colors::kPurple}}},
                    IndicatorCase{"Windows", {.hasWindows = true}, {{"Windows", 11, kMedium, Colors::kGray}}},
                    IndicatorCase{"Linux", {.hasLinux = true}, {{"Linux", 11, kMedium, Colors::kPurple}}},
                    IndicatorCase{"ExFAT", {.hasExFAT = true}, {{"ExFAT", 11, kMedium, Colors::kRed}}},
                    IndicatorCase{"MacOSAndExFAT",
                                  {.hasMacOS = true, .hasExFAT = true},
                                  {{"macOS", 11, kMedium, Colors::kBlue}, {"ExFAT", 11, kRegular, Colors::kRed}}},
                    IndicatorCase{"BootLoaderAndWindowsExFAT",
                                  {.hasMacOS = true, .hasOpenCore = true, .hasWindows = true, .hasExFAT = true},
                                  {{"OC", 11, kMedium, Colors::kOpenCore},
                                   {"macOS", 11, kRegular, Colors::kBlue},
                                   {"Windows ExFAT", 11, kRegular, Colors::kGray}}},
                    IndicatorCase{"NothingAsUnknown", {}, {{"Unknown", 11, kMedium, Colors::kSecondary}}}),
    [](const auto &row) { return row.param.name; });

TEST(DiskRowContent, ShowsUnknownAndAnUnfilledSymbolForADiskWithoutAnySystem)
{
    const DiskRowContent row = rowOf(bareDisk());

    EXPECT_THAT(textsOf(row.indicators()), ElementsAre("Unknown"));
    EXPECT_EQ(row.icon().name, "internaldrive");
}

// --- boot disk

TEST(DiskRowContent, ListsBothBootLoadersOfADiskAndOnlyCloverOfTheSameAsBootDisk)
{
    DiskRowContent row = rowOf(bareDisk());
    row.disk.hasOpenCore = true;
    row.disk.hasClover = true;

    EXPECT_THAT(textsOf(row.indicators()), ElementsAre("OC", "Clover"));
    EXPECT_THAT(row.bootLabels(), IsEmpty());
    row.disk.isBootDisk = true;
    EXPECT_THAT(row.indicators(), IsEmpty());
    EXPECT_THAT(row.bootLabels(), ElementsAre(RowText{"Boot Disk", 11, kMedium, Colors::kGreen},
                                              RowText{"Clover", 10, kMedium, Colors::kGreen}));
}

TEST(DiskRowContent, NamesOpenCoreBesideABootDiskWithoutClover)
{
    DiskRowContent row = rowOf(bootDisk());
    row.disk.hasOpenCore = true;

    EXPECT_THAT(row.bootLabels(), ElementsAre(RowText{"Boot Disk", 11, kMedium, Colors::kGreen},
                                              RowText{"OC", 11, kMedium, Colors::kOpenCore}));
}

// --- SMART badge

struct BadgeCase {
    const char *name;
    SMARTStatus status;
    std::optional<RowText> badge;
};

class RowsBadge : public testing::TestWithParam<BadgeCase> {};

TEST_P(RowsBadge, TellsTheHealthWhereTheSettingIsOn)
{
    DiskRowContent row = rowOf(bareDisk());
    row.disk.smartStatus = GetParam().status;

    EXPECT_EQ(row.smartBadge(), std::nullopt);
    EXPECT_EQ(row.details().size(), 3U);
    row.showSMARTStatus = true;
    EXPECT_EQ(row.smartBadge(), GetParam().badge);
    EXPECT_EQ(row.details().size(), GetParam().badge ? 4U : 3U);
}

INSTANTIATE_TEST_SUITE_P(
    DiskRowContent, RowsBadge,
    testing::Values(BadgeCase{"Verified", SMARTStatus::verified, RowText{"SMART OK", 11, kRegular, Colors::kGreen}},
                    BadgeCase{"Failing", SMARTStatus::failing, RowText{"SMART Failing", 11, kBold, Colors::kRed}},
                    BadgeCase{"NotSupported", SMARTStatus::notSupported,
                              RowText{"SMART N/A", 11, kRegular, Colors::kSecondary}},
                    BadgeCase{"UnknownShowsNeitherBulletNorBadge", SMARTStatus::unknown, std::nullopt}),
    [](const auto &row) { return row.param.name; });

// --- space bar

DiskRowContent rowOfSpace(std::optional<std::int64_t> used, std::optional<std::int64_t> total)
{
    DiskRowContent row = rowOf(bareDisk());
    row.disk.usedSpaceBytes = used;
    row.disk.totalSpaceBytes = total;
    row.showDiskSpaceIndicator = true;
    return row;
}

struct RatioCase {
    const char *name;
    std::int64_t used;
    std::int64_t total;
    double ratio;
    int percentage;
    std::string_view color;
};

class RowsSpaceBar : public testing::TestWithParam<RatioCase> {};

TEST_P(RowsSpaceBar, HasTheColourAndThePercentageOfItsRatio)
{
    const std::optional<SpaceBar> bar = rowOfSpace(GetParam().used, GetParam().total).spaceBar();

    ASSERT_TRUE(bar);
    EXPECT_DOUBLE_EQ(bar->ratio, GetParam().ratio);
    EXPECT_EQ(bar->color.value, GetParam().color);
    EXPECT_EQ(bar->percentage(), GetParam().percentage);
    EXPECT_EQ(bar->percent, (RowText{std::to_string(GetParam().percentage) + "%", 10, kBold, bar->color}));
}

INSTANTIATE_TEST_SUITE_P(DiskRowContent, RowsSpaceBar,
                         testing::Values(RatioCase{"Empty", 0, 1000, 0, 0, "blue"},
                                         RatioCase{"ExactlyThreeQuarters", 750, 1000, 0.75, 75, "blue"},
                                         RatioCase{"AboveThreeQuarters", 751, 1000, 0.751, 75, "orange"},
                                         RatioCase{"ExactlyNineTenths", 900, 1000, 0.9, 90, "orange"},
                                         RatioCase{"AboveNineTenths", 901, 1000, 0.901, 90, "red"},
                                         RatioCase{"HalfAPercentIsRoundedUp", 905, 1000, 0.905, 91, "red"},
                                         RatioCase{"HalfAnEvenPercentIsRoundedUp", 5, 1000, 0.005, 1, "blue"},
                                         RatioCase{"LessThanHalfAPercent", 904, 1000, 0.904, 90, "red"},
                                         RatioCase{"Full", 1000, 1000, 1, 100, "red"},
                                         RatioCase{"MoreThanFull", 1001, 1000, 1, 100, "red"},
                                         RatioCase{"LessThanEmpty", -1, 1000, 0, 0, "blue"},
                                         RatioCase{"SmallestTotal", 1, 1, 1, 100, "red"}),
                         [](const auto &row) { return row.param.name; });

TEST(DiskRowContent, TellsTheSpaceInBothFigures)
{
    const std::optional<SpaceBar> bar = rowOfSpace(245'110'000'000, 1'000'000'000'000).spaceBar();

    ASSERT_TRUE(bar);
    EXPECT_EQ(bar->space, (RowText{"245.11 GB of 1 TB used", 10, kRegular, Colors::kSecondary}));
}

TEST(DiskRowContent, HidesTheSpaceBarWithoutTheSettingOrAFigure)
{
    DiskRowContent switchedOff = rowOfSpace(1, 2);
    switchedOff.showDiskSpaceIndicator = false;

    EXPECT_TRUE(rowOfSpace(1, 2).spaceBar());
    EXPECT_FALSE(switchedOff.spaceBar());
    EXPECT_FALSE(rowOfSpace(std::nullopt, 2).spaceBar());
    EXPECT_FALSE(rowOfSpace(1, std::nullopt).spaceBar());
    EXPECT_FALSE(rowOfSpace(0, 0).spaceBar());
    EXPECT_FALSE(rowOfSpace(1, -1).spaceBar());
}

TEST(SpaceBar, DrawsAFillOfThreePointsEvenForATinyRatio)
{
    EXPECT_EQ(SpaceBar{.ratio = 0.001}.fillWidth(400), 3);
    EXPECT_EQ(SpaceBar{.ratio = 0}.fillWidth(400), 3);
    EXPECT_EQ(SpaceBar{.ratio = 0.5}.fillWidth(400), 200);
    EXPECT_EQ(SpaceBar{.ratio = 1}.fillWidth(400), 400);
}

TEST(SpaceBar, NeverFillsMoreThanThereIs)
{
    EXPECT_EQ(SpaceBar{.ratio = 0.5}.fillWidth(2), 2);
    EXPECT_EQ(SpaceBar{.ratio = 0.5}.fillWidth(0), 0);
}

// --- EFI indicator

DiskRowContent rowOfPartitions(std::size_t count, bool efiMounted)
{
    DiskRowContent row = rowOf(bareDisk());
    row.disk.efiPartitions.resize(count);
    row.efiMounted = efiMounted;
    row.showEFIIndicator = true;
    return row;
}

TEST(DiskRowContent, ShowsASymbolForASinglePartition)
{
    const std::optional<EFIIndicator> mounted = rowOfPartitions(1, true).efiIndicator();
    const std::optional<EFIIndicator> unmounted = rowOfPartitions(1, false).efiIndicator();

    ASSERT_TRUE(mounted && unmounted);
    EXPECT_EQ(mounted->symbol, (RowSymbol{"checkmark.circle.fill", 16, Colors::kGreen}));
    EXPECT_EQ(unmounted->symbol, (RowSymbol{"circle", 16, Colors::kSecondary}));
    EXPECT_EQ(mounted->count, std::nullopt);
    EXPECT_EQ(mounted->label, (RowText{"EFI", 10, kRegular, Colors::kSecondary}));
}

TEST(DiskRowContent, ShowsTheNumberOfSeveralPartitions)
{
    const std::optional<EFIIndicator> mounted = rowOfPartitions(2, true).efiIndicator();
    const std::optional<EFIIndicator> unmounted = rowOfPartitions(3, false).efiIndicator();

    ASSERT_TRUE(mounted && unmounted);
    EXPECT_EQ(mounted->count, (RowText{"2", 14, kRegular, Colors::kGreen}));
    EXPECT_EQ(unmounted->count, (RowText{"3", 14, kRegular, Colors::kSecondary}));
    EXPECT_EQ(mounted->symbol, std::nullopt);
    EXPECT_EQ(mounted->label, (RowText{"EFI", 10, kRegular, Colors::kSecondary}));
}

TEST(DiskRowContent, ShowsNoEFIIndicatorUnlessTheRowWantsItAndThereIsAPartition)
{
    DiskRowContent unwanted = rowOfPartitions(1, true);
    unwanted.showEFIIndicator = false;

    EXPECT_FALSE(unwanted.efiIndicator());
    EXPECT_FALSE(rowOfPartitions(0, true).efiIndicator());
}

// --- settings

struct SettingCase {
    const char *name;
    std::optional<PropertyValue> value;
    bool isOn;
};

class RowsSettings : public testing::TestWithParam<SettingCase> {};

TEST_P(RowsSettings, AreOffUnlessTheyAreTheBooleanTrue)
{
    MemoryUserDefaults defaults;
    DiskRowContent row{.showDiskSpaceIndicator = !GetParam().isOn, .showSMARTStatus = !GetParam().isOn};
    if (GetParam().value) {
        defaults.set(DefaultsKeys::kShowDiskSpaceIndicator, *GetParam().value);
        defaults.set(DefaultsKeys::kShowSMARTStatus, *GetParam().value);
    }

    row.readSettings(defaults);

    EXPECT_EQ(row.showDiskSpaceIndicator, GetParam().isOn);
    EXPECT_EQ(row.showSMARTStatus, GetParam().isOn);
}

INSTANTIATE_TEST_SUITE_P(DiskRowContent, RowsSettings,
                         testing::Values(SettingCase{"NeverWritten", std::nullopt, false},
                                         SettingCase{"True", true, true}, SettingCase{"False", false, false},
                                         SettingCase{"OfAnotherType", "true", false}),
                         [](const auto &row) { return row.param.name; });

TEST(DiskRowContent, ReadsEachSettingFromItsOwnKey)
{
    MemoryUserDefaults defaults;
    DiskRowContent row;
    defaults.set(DefaultsKeys::kShowSMARTStatus, true);
    defaults.set(DefaultsKeys::kLowerCaseShowDiskSpaceIndicator, true);

    row.readSettings(defaults);

    EXPECT_TRUE(row.showSMARTStatus);
    EXPECT_FALSE(row.showDiskSpaceIndicator);
}

} // namespace
} // namespace brindle
