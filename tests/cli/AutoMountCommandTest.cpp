// The real program: which disks are marked to be mounted by themselves.

#include "cli/BrindlectlFixture.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace brindle {
namespace {

using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char *kUUID = "5F7A0C11-0000-4000-8000-000000000001";
constexpr const char *kNothing = "No disks configured for auto-mount.\n";

class AutoMountCommand : public Brindlectl {
protected:
    AutoMountCommand()
    {
        machine.addDisk("disk2").named("Stick").withInfoLine(std::string("Disk / Partition UUID: ") + kUUID);
        machine.addDisk("disk3").named("No UUID");
    }

    std::string list() { return run({"automount", "list"}).output; }
};

TEST_F(AutoMountCommand, MarksADiskByItsUUIDWithItsName)
{
    EXPECT_EQ(list(), kNothing);

    const Outcome outcome = run({"automount", "add", "disk2"});

    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_THAT(outcome.output, IsEmpty());
    EXPECT_EQ(list(), std::string("UUID                                  NAME\n") + kUUID + "  Stick\n");
    EXPECT_EQ(json::parse(run({"automount", "list", "--json"}).output),
              json::array({{{"mediaUUID", kUUID}, {"name", "Stick"}}}));
    EXPECT_EQ(json::parse(run({"settings", "get", "AutoMountDiskUUIDs", "--json"}).output), json({{kUUID, "Stick"}}));
}

TEST_F(AutoMountCommand, UnmarksADiskByItsIdentifier)
{
    run({"automount", "add", "disk2"});

    EXPECT_EQ(run({"automount", "remove", "disk2"}).status, 0);

    EXPECT_EQ(list(), kNothing);
}

TEST_F(AutoMountCommand, UnmarksADiskThatIsNotThereByItsUUIDWithoutAScan)
{
    run({"settings", "set", "AutoMountDiskUUIDs", R"({"GONE": "Old Stick"})"});

    EXPECT_EQ(run({"automount", "remove", "GONE"}).status, 0);

    EXPECT_EQ(list(), kNothing);
    EXPECT_THAT(machine.calls(), IsEmpty());
}

TEST_F(AutoMountCommand, MakesAStrangersNameVisible)
{
    run({"settings", "set", "AutoMountDiskUUIDs", "{\"U\": \"A\\u202eB\"}"});

    EXPECT_EQ(list(), "UUID  NAME\nU     A<U+202E>B\n");
}

TEST_F(AutoMountCommand, TakesAStoreOfAnotherShapeForNoneAndReplacesIt)
{
    std::filesystem::create_directories(machine.root() / "config/brindle");
    std::ofstream(machine.root() / "config/brindle/com.orlane.Brindle.plist")
        << R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict><key>AutoMountDiskUUIDs</key><dict><key>A</key><integer>1</integer></dict></dict></plist>
)";
    EXPECT_EQ(list(), kNothing);

    EXPECT_EQ(run({"automount", "add", "disk2"}).status, 0);

    EXPECT_THAT(list(), EndsWith("  Stick\n"));
}

struct RefusalCase {
    const char *name;
    std::vector<std::string> arguments;
    int status;
    const char *complaint;
};

class AutoMountRefuses : public AutoMountCommand, public testing::WithParamInterface<RefusalCase> {};

TEST_P(AutoMountRefuses, AndChangesNothing)
{
    run({"settings", "set", "AutoMountDiskUUIDs", R"({"KEPT": "Kept"})"});

    const Outcome outcome = run(GetParam().arguments);

    EXPECT_EQ(outcome.status, GetParam().status);
    EXPECT_THAT(outcome.output, IsEmpty());
    EXPECT_THAT(outcome.error, HasSubstr(GetParam().complaint));
    EXPECT_EQ(list(), "UUID  NAME\nKEPT  Kept\n");
}

INSTANTIATE_TEST_SUITE_P(
    AutoMountCommand, AutoMountRefuses,
    testing::Values(RefusalCase{"AnUnknownDisk", {"automount", "add", "disk9"}, 3, "There is no disk \"disk9\""},
                    RefusalCase{"ADiskWithoutUUID", {"automount", "add", "disk3"}, 1, "disk3 has no UUID"},
                    RefusalCase{"ToUnmarkAnUnknownDisk", {"automount", "remove", "disk9"}, 3, "There is no disk"},
                    RefusalCase{"ToUnmarkADiskWithoutMark", {"automount", "remove", "disk2"}, 1, "disk2 is not marked"},
                    RefusalCase{"ToUnmarkADiskWithoutUUID", {"automount", "remove", "disk3"}, 1, "disk3 is not marked"},
                    RefusalCase{"NoSubcommand", {"automount"}, 2, "A command is required"}),
    [](const auto &row) { return std::string(row.param.name); });

} // namespace
} // namespace brindle
