// The commands that tell what the views show.

#include "cli/BrindlectlFixture.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <string>

namespace brindle {
namespace {

using nlohmann::json;
using testing::IsEmpty;
using testing::Not;

class ViewCommands : public Brindlectl {
protected:
    void switchOn(const std::string &key) { store("<key>" + key + "</key><true/>"); }

    /// Makes \a entries, in the XML of property lists, all that is in the settings.
    void store(const std::string &entries)
    {
        const auto file = machine.root() / "config/brindle/com.orlane.Brindle.plist";
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << "<?xml version=\"1.0\"?>\n<plist version=\"1.0\"><dict>" << entries
                            << "</dict></plist>\n";
    }
};

// --- rows

TEST_F(ViewCommands, TellTheRowsAsJsonAndPrintNothingElse)
{
    machine.addDisk("disk0").named("APPLE SSD");
    machine.addDisk("disk2").named("Stick").removable();

    const Outcome rows = run({"rows", "--json"});

    EXPECT_EQ(rows.status, 0);
    EXPECT_THAT(rows.error, IsEmpty());
    const json printed = json::parse(rows.output);
    ASSERT_EQ(printed.size(), 2U);
    EXPECT_EQ(printed[0].at("identifier"), "disk0");
    EXPECT_EQ(printed[0].at("typeLabel"), "Internal");
    EXPECT_FALSE(printed[0].contains("smartBadge"));
    EXPECT_EQ(printed[1].at("identifier"), "disk2");
    EXPECT_EQ(printed[1].at("typeLabel"), "Removable");
}

TEST_F(ViewCommands, TellTheHealthInTheRowsOnceItsSettingIsOn)
{
    machine.addDisk("disk0");
    switchOn("ShowSMARTStatus");

    EXPECT_EQ(json::parse(run({"rows", "--json"}).output).at(0).at("smartBadge"), "SMART OK");
}

TEST_F(ViewCommands, TellTheRowsForPeople)
{
    machine.addDisk("disk0").named("APPLE SSD").sized("500.3 GB");

    const Outcome rows = run({"rows"});

    EXPECT_EQ(rows.status, 0);
    EXPECT_EQ(rows.output, "disk0  APPLE SSD  No Volume Label\n"
                           "       500.3 GB • Internal • Unknown\n");
}

// --- height

TEST_F(ViewCommands, TellTheHeightInPoints)
{
    machine.addDisk("disk0");

    EXPECT_EQ(run({"height"}).output, "150\n");
    EXPECT_EQ(run({"height", "--json"}).output, "{\"height\": 150}\n");
}

TEST_F(ViewCommands, TellTheHeightWithTheRowsOpenedThatAreNamed)
{
    machine.addDisk("disk0").withEFI("EFI").withEFI("");
    machine.addDisk("disk2").withEFI("A").withEFI("B");

    EXPECT_EQ(run({"height"}).output, "222\n");
    EXPECT_EQ(run({"height", "--expand", "disk0"}).output, "315\n");
    EXPECT_EQ(run({"height", "--expand", "disk0,disk2,disk7", "--json"}).output, "{\"height\": 409}\n");
    EXPECT_EQ(run({"height", "--expand", "disk0", "--expand", "disk2"}).output, "409\n");
    EXPECT_EQ(run({"height", "--expand", ""}).output, "222\n");
    EXPECT_EQ(run({"height", "--expand=disk0"}).output, "315\n");
    EXPECT_EQ(run({"height", "--expand=", "--json"}).output, "{\"height\": 222}\n");
}

TEST_F(ViewCommands, TellTheHeightWithTheRowsThatWereLeftOpenUnlessOthersAreNamed)
{
    machine.addDisk("disk0").withEFI("EFI").withEFI("");
    machine.addDisk("disk2").withEFI("A").withEFI("B");
    store("<key>DiskManager.PersistedExpandedDisks</key><array><string>disk0</string></array>");

    EXPECT_EQ(run({"height"}).output, "315\n");
    EXPECT_EQ(run({"height", "--expand", "disk2"}).output, "316\n");
    EXPECT_EQ(run({"height", "--expand", ""}).output, "222\n");
}

TEST_F(ViewCommands, TellTheHeightOfTheEmptyViewWithoutDisks)
{
    machine.replaceTool("diskutil", std::nullopt);

    EXPECT_EQ(run({"height"}).output, "202\n");
}

// --- icon-state

TEST_F(ViewCommands, TellTheIconStateByTheFilesOnAMountedPartition)
{
    const auto mountPoint = machine.root() / "Volumes/EFI";
    std::filesystem::create_directories(mountPoint / "EFI");
    machine.addDisk("disk0").withEFI("EFI", mountPoint.string());

    EXPECT_EQ(run({"icon-state"}).output, "genericEFIMounted\n");
    std::filesystem::create_directories(mountPoint / "EFI/OC");
    EXPECT_EQ(run({"icon-state"}).output, "openCoreMounted\n");
}

TEST_F(ViewCommands, TellTheDefaultIconStateWhereNothingIsMounted)
{
    machine.addDisk("disk0").withEFI("EFI");

    const Outcome state = run({"icon-state"});

    EXPECT_EQ(state.status, 0);
    EXPECT_EQ(state.output, "default\n");
    EXPECT_THAT(state.error, IsEmpty());
}

// --- all of them

TEST_F(ViewCommands, EndWithTwoOnWrongUsage)
{
    for (const std::vector<std::string> &arguments : {std::vector<std::string>{"rows", "disk0"},
                                                      {"height", "--expand"},
                                                      {"height", "disk0"},
                                                      {"icon-state", "--json"}}) {
        const Outcome wrong = run(arguments);
        EXPECT_EQ(wrong.status, 2) << arguments.front();
        EXPECT_THAT(wrong.output, IsEmpty());
        EXPECT_THAT(wrong.error, Not(IsEmpty()));
    }
}

} // namespace
} // namespace brindle
