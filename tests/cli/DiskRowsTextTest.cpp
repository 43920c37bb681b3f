#include "cli/DiskRowsText.h"

#include "base/Text.h"
#include "cli/DisplayText.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::HasSubstr;
using testing::Not;

/// A row with all that a row can show.
DiskRowContent fullRow()
{
    return {.disk = {.identifier = "disk2",
                     .name = "SanDisk Ultra Fit",
                     .size = "30.8 GB",
                     .volumeName = "OPENCORE • WORK",
                     .diskType = PhysicalDisk::DiskType::removable,
                     .totalSpaceBytes = 30'800'000'000,
                     .usedSpaceBytes = 28'028'000'000,
                     .hasMacOS = true,
                     .hasOpenCore = true,
                     .smartStatus = SMARTStatus::failing},
            .showDiskSpaceIndicator = true,
            .showSMARTStatus = true};
}

/// A row with as little as a row can show.
DiskRowContent bareRow()
{
    return {.disk = {.identifier = "disk10", .name = "Blank", .size = "500.1 GB"}};
}

DiskRowContent bootRow()
{
    return {.disk = {
                .identifier = "disk0", .name = "APPLE SSD", .size = "1.0 TB", .isBootDisk = true, .hasOpenCore = true}};
}

// --- for people

TEST(DiskRowsText, GivesARowTwoLinesAndAThirdForItsSpace)
{
    EXPECT_EQ(diskRowsText({bootRow(), fullRow(), bareRow()}, {}),
              "disk0   APPLE SSD  No Volume Label\n"
              "        1.0 TB • Internal • Boot Disk • OC\n"
              "disk2   SanDisk Ultra Fit  OPENCORE • WORK\n"
              "        30.8 GB • Removable • OC • macOS • SMART Failing\n"
              "        28.03 GB of 30.8 GB used  91%\n"
              "disk10  Blank  No Volume Label\n"
              "        500.1 GB • Internal • Unknown\n");
}

TEST(DiskRowsText, SaysSoWhenThereIsNoDisk)
{
    EXPECT_EQ(diskRowsText({}, {}), "No disks found.\n");
}

TEST(DiskRowsText, CutsItsLinesToTheWidthOfTheTerminal)
{
    const std::string text = diskRowsText({fullRow()}, {.width = 24});

    EXPECT_EQ(text, "disk2  SanDisk Ultra Fit\n"
                    "       30.8 GB • Remova…\n"
                    "       28.03 GB of 30.8…\n");
    for (const std::string_view line : Lines(text))
        EXPECT_LE(displayWidth(line), 24U) << line;
}

TEST(DiskRowsText, ColoursAsTheRowDoesWhereTheTerminalHasColour)
{
    const std::string coloured = diskRowsText({fullRow(), bootRow()}, {.width = 80, .hasColour = true});

    EXPECT_THAT(coloured, HasSubstr("\x1b[1;31mSMART Failing\x1b[0m"));
    EXPECT_THAT(coloured, HasSubstr("\x1b[1;31m91%\x1b[0m"));
    EXPECT_THAT(coloured, HasSubstr("\x1b[32mBoot Disk\x1b[0m"));
    EXPECT_THAT(coloured, HasSubstr("\x1b[36mOC\x1b[0m"));
    EXPECT_THAT(coloured, HasSubstr("\x1b[2mRemovable\x1b[0m"));
    EXPECT_THAT(diskRowsText({fullRow()}, {.width = 80}), Not(HasSubstr("\x1b")));
}

TEST(DiskRowsText, NeverLetsANameReachTheTerminalAsACommand)
{
    DiskRowContent row = bareRow();
    row.disk.name = "\x1b]0;owned\x07";
    row.disk.volumeName = "two\nlines \u202Etxt";
    row.disk.size = "\x1b[2J";

    const std::string text = diskRowsText({row}, {});

    EXPECT_THAT(text, Not(HasSubstr("\x1b")));
    EXPECT_THAT(text, Not(HasSubstr("\u202E")));
    EXPECT_THAT(text, HasSubstr("two<U+000A>lines"));
}

// --- for programs

TEST(DiskRowsJson, HasTheSameKeysForEveryRowAndMoreOnlyForWhatIsShown)
{
    EXPECT_EQ(diskRowsJson({bootRow(), fullRow()}), R"([
  {
    "identifier": "disk0",
    "symbol": "applelogo",
    "typeLabel": "Internal",
    "indicators": [],
    "bootLabels": [
      "Boot Disk",
      "OC"
    ],
    "volumeLabel": "No Volume Label"
  },
  {
    "identifier": "disk2",
    "symbol": "externaldrive.connected.to.line.below.fill",
    "typeLabel": "Removable",
    "indicators": [
      "OC",
      "macOS"
    ],
    "bootLabels": [],
    "volumeLabel": "OPENCORE • WORK",
    "smartBadge": "SMART Failing",
    "spaceText": "28.03 GB of 30.8 GB used",
    "percent": 91,
    "barColor": "red"
  }
]
)");
}

TEST(DiskRowsJson, HandsNamesOnAsTheyAreAndReplacesWhatIsNoText)
{
    DiskRowContent row = bareRow();

    row.disk.volumeName = "two\nlines \u202Etxt";
    EXPECT_EQ(nlohmann::json::parse(diskRowsJson({row})).at(0).at("volumeLabel"), "two\nlines \u202Etxt");
    row.disk.volumeName = "Gen\xE9rico";
    EXPECT_EQ(nlohmann::json::parse(diskRowsJson({row})).at(0).at("volumeLabel"), "Gen\uFFFDrico");
}

TEST(DiskRowsJson, IsAnEmptyArrayWithoutDisks)
{
    EXPECT_EQ(diskRowsJson({}), "[]\n");
}

} // namespace
} // namespace brindle
