// The settings as a user of the terminal sees and changes them.

#include "cli/BrindlectlFixture.h"

#include "platform/linux/PlistUserDefaults.h"
#include "records/Preferences.h"
#include "support/Patience.h"

#include <QStandardPaths>

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <optional>

namespace brindle {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class SettingsCommand : public Brindlectl {
protected:
    SettingsCommand() { std::filesystem::create_directories(store.parent_path()); }

    /// What the file holds, read as another process does.
    [[nodiscard]] std::optional<PropertyValue> stored(const std::string &key) const
    {
        return PlistUserDefaults(store).object(key);
    }

    void keep(const std::string &key, const PropertyValue &value) const { PlistUserDefaults(store).set(key, value); }

    [[nodiscard]] Outcome change(const std::string &key, const std::string &value)
    {
        return run({"settings", "set", key, value});
    }

    /// Runs a shell's \a script, in which "$@" is brindlectl, with the words of \a shell before it.
    [[nodiscard]] int runScript(std::vector<std::string> shell, const std::string &script, std::string &error)
    {
        const std::string executable = shell.front();
        shell.erase(shell.begin());
        shell.insert(shell.end(), {"-c", script, "sh", BRINDLECTL});
        QProcess process;
        start(process, shell, machine.root().string(), executable);
        EXPECT_TRUE(process.waitForFinished(kPatienceMilliseconds));
        error = process.readAllStandardError().toStdString();
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }

    std::filesystem::path store = machine.root() / "config/brindle/com.orlane.Brindle.plist";
};

// --- get and set

TEST_F(SettingsCommand, KeepsWhatIsSet)
{
    const Outcome set = change("ShowSMARTStatus", "true");

    EXPECT_EQ(set.status, 0);
    EXPECT_THAT(set.output, IsEmpty());
    EXPECT_THAT(set.error, IsEmpty());
    EXPECT_EQ(stored("ShowSMARTStatus"), PropertyValue(true));
    EXPECT_EQ(run({"settings", "get", "ShowSMARTStatus"}).output, "true\n");
}

TEST_F(SettingsCommand, ChangesWhatTheNextScanShows)
{
    machine.addDisk("disk0");
    machine.addDisk("disk2").removable().onBus("USB");

    EXPECT_EQ(change("ShowInternalDisks", "false").status, 0);

    EXPECT_EQ(run({"list", "--json"}).identifiers(), std::vector<std::string>{"disk2"});
}

TEST_F(SettingsCommand, TellsTheValueAsJson)
{
    EXPECT_EQ(change("AutoMountDiskUUIDs", R"({"0E239BC6":"Stick"})").status, 0);

    EXPECT_EQ(json::parse(run({"settings", "get", "AutoMountDiskUUIDs", "--json"}).output),
              (json{{"0E239BC6", "Stick"}}));
    EXPECT_EQ(run({"settings", "get", "LaunchMode", "--json"}).output, "\"menubar\"\n");
    EXPECT_EQ(run({"settings", "get", "DiskManager.LastRefreshTime", "--json"}).output, "null\n");
}

TEST_F(SettingsCommand, PrintsNothingForAKeyWithoutAValue)
{
    const Outcome get = run({"settings", "get", "DiskManager.LastRefreshTime"});

    EXPECT_EQ(get.status, 0);
    EXPECT_THAT(get.output, IsEmpty());
    EXPECT_THAT(get.error, IsEmpty());
}

TEST_F(SettingsCommand, LetsNoStoredTextReachTheTerminalAsACommand)
{
    keep("AutoMountDiskUUIDs", PropertyValue::Dictionary{{"uuid", "a\u202Eb"}});
    keep("LaunchMode", "\u202Ewodniw");

    const Outcome list = run({"settings", "list"});

    EXPECT_THAT(list.output, HasSubstr("a<U+202E>b"));
    EXPECT_THAT(list.output, HasSubstr("menubar  (stored as <U+202E>wodniw)\n"));
    EXPECT_THAT(run({"settings", "get", "AutoMountDiskUUIDs"}).output, HasSubstr("a<U+202E>b"));
}

TEST_F(SettingsCommand, TellsHowAValueOfAnotherTypeIsStored)
{
    keep("ShowInternalDisks", 0);
    keep("PreferencesInitialized", "YES");

    const Outcome list = run({"settings", "list"});

    EXPECT_THAT(list.output, HasSubstr("\nShowInternalDisks                   true  (stored as 0)\n"));
    EXPECT_THAT(list.output,
                HasSubstr("\nPreferencesInitialized              true  (stored as YES, shown as false)\n"));
}

TEST_F(SettingsCommand, LeavesTheMarkOfAModeSwitchToTheApplication)
{
    keep("IsModeSwitchRelaunch", true);

    EXPECT_EQ(run({"settings", "get", "IsModeSwitchRelaunch"}).output, "true\n");

    EXPECT_EQ(stored("IsModeSwitchRelaunch"), PropertyValue(true));
}

// --- list

TEST_F(SettingsCommand, ListsEveryKeyAsJsonAndPrintsNothingElse)
{
    const Outcome list = run({"settings", "list", "--json"});

    EXPECT_EQ(list.status, 0);
    EXPECT_THAT(list.error, IsEmpty());
    const json settings = json::parse(list.output);
    EXPECT_EQ(settings.size(), allPreferences().size());
    EXPECT_EQ(settings.at("ShowNotifications"), (json{{"type", "Bool"}, {"value", true}, {"isSet", true}}));
    EXPECT_EQ(settings.at("OpenEFIOnNotificationClick"),
              (json{{"type", "Bool"}, {"value", false}, {"isSet", false}, {"shown", true}}));
    EXPECT_EQ(settings.at("SUScheduledCheckInterval"),
              (json{{"type", "Double"}, {"value", nullptr}, {"isSet", false}}));
}

TEST_F(SettingsCommand, ListsTheSettingsForPeople)
{
    keep("DiskManager.PersistedDisks", PropertyValue::Data(5));

    const Outcome list = run({"settings", "list"});

    EXPECT_EQ(list.status, 0);
    EXPECT_THAT(list.output, testing::StartsWith("KEY                                 VALUE\n"
                                                 "PreferencesInitialized              true\n"));
    EXPECT_THAT(list.output, HasSubstr("\nOpenEFIOnNotificationClick          false  (not set, shown as true)\n"));
    EXPECT_THAT(list.output, HasSubstr("\nDiskManager.LastRefreshTime         –  (not set)\n"));
    EXPECT_THAT(list.output, HasSubstr("\nDiskManager.PersistedDisks          5 bytes\n"));
}

// --- what is wrong

struct WrongCase {
    const char *name;
    std::vector<std::string> arguments;
    const char *error;
};

class WrongSettings : public SettingsCommand, public testing::WithParamInterface<WrongCase> {};

TEST_P(WrongSettings, EndWithTwoAndChangeNothing)
{
    std::vector<std::string> arguments = GetParam().arguments;
    arguments.insert(arguments.begin(), "settings");

    const Outcome wrong = run(arguments);

    EXPECT_EQ(wrong.status, 2);
    EXPECT_THAT(wrong.output, IsEmpty());
    EXPECT_THAT(wrong.error, HasSubstr(GetParam().error));
    EXPECT_FALSE(std::filesystem::exists(store));
}

INSTANTIATE_TEST_SUITE_P(
    SettingsCommand, WrongSettings,
    testing::Values(
        WrongCase{"NothingAskedFor", {}, "A command is required"},
        WrongCase{"UnknownKey", {"get", "ShowEverything"}, "there is no setting \"ShowEverything\""},
        WrongCase{"KeyInAnotherCase", {"set", "showsmartstatus", "true"}, "there is no setting \"showsmartstatus\""},
        WrongCase{"HostileKey", {"get", "\x1b[2J"}, "there is no setting \"<U+001B>[2J\""},
        WrongCase{"NoKey", {"get"}, "KEY"}, WrongCase{"NoValue", {"set", "ShowSMARTStatus"}, "VALUE"},
        WrongCase{"TwoValues", {"set", "ShowSMARTStatus", "true", "false"}, "false"},
        WrongCase{
            "NoBoolean", {"set", "ShowSMARTStatus", "maybe"}, "ShowSMARTStatus: takes true or false, not \"maybe\""},
        WrongCase{"NoChoice", {"set", "LaunchMode", "dock"}, "LaunchMode: takes menubar or window, not \"dock\""},
        WrongCase{"EmptyValue", {"set", "LaunchMode", ""}, "LaunchMode: takes menubar or window, not \"\""}),
    [](const auto &row) { return row.param.name; });

// --- in company, and in need of space

TEST_F(SettingsCommand, LosesNothingOfTwoProcessesThatWriteInTurn)
{
    const std::vector<std::string> keys{"ShowInternalDisks", "ShowExternalDisks", "EnableGlobalHotkey",
                                        "ShowSMARTStatus",   "LaunchAtLogin",     "AutoOpenConfigOnMount"};
    for (const std::string value : {"true", "false", "true"}) {
        for (std::size_t i = 0; i < keys.size(); i += 2) {
            QProcess one;
            QProcess other;
            start(one, {"settings", "set", keys[i], value});
            start(other, {"settings", "set", keys[i + 1], value});
            ASSERT_TRUE(one.waitForFinished(kPatienceMilliseconds));
            ASSERT_TRUE(other.waitForFinished(kPatienceMilliseconds));
            EXPECT_EQ(one.exitCode() + other.exitCode(), 0);
        }
        for (const std::string &key : keys)
            EXPECT_EQ(stored(key), PropertyValue(value == "true")) << key;
    }
}

TEST_F(SettingsCommand, TellsThatAFileMayNotGrowAndKeepsTheOldOne)
{
    EXPECT_EQ(change("LaunchMode", "window").status, 0);
    std::string error;

    const int status = runScript({"sh"}, R"(trap '' XFSZ; ulimit -f 0; "$@" settings set ShowSMARTStatus true)", error);

    EXPECT_EQ(status, 1);
    EXPECT_THAT(error, HasSubstr("brindlectl: ShowSMARTStatus can't be kept: "));
    EXPECT_THAT(error, HasSubstr("File too large\n"));
    EXPECT_EQ(stored("LaunchMode"), PropertyValue("window"));
    EXPECT_EQ(stored("ShowSMARTStatus"), std::nullopt);
}

TEST_F(SettingsCommand, TellsThatTheDiskIsFullAndKeepsTheOldFile)
{
    std::string error;
    const std::vector<std::string> shell{"unshare", "--mount", "sh"};
    const std::string mount = R"(mount -t tmpfs -o size=16k none "$XDG_CONFIG_HOME")";
    if (QStandardPaths::findExecutable(QStringLiteral("unshare")).isEmpty() || runScript(shell, mount, error) != 0)
        GTEST_SKIP() << "this user may not mount a file system in a namespace";

    const int status = runScript(shell, mount + R"( && "$@" settings set LaunchMode window || exit 77
file=$XDG_CONFIG_HOME/brindle/com.orlane.Brindle.plist
cp "$file" "$TMPDIR/before"
dd if=/dev/zero of="$XDG_CONFIG_HOME/filler" bs=1k 2>/dev/null
"$@" settings set ShowSMARTStatus true
status=$?
cmp "$file" "$TMPDIR/before" || exit 78
exit $status
)",
                                 error);

    EXPECT_EQ(status, 1) << error;
    EXPECT_THAT(error, HasSubstr("brindlectl: ShowSMARTStatus can't be kept: "));
    EXPECT_THAT(error, HasSubstr("No space left on device\n"));
    EXPECT_THAT(error, Not(HasSubstr("differ")));
}

} // namespace
} // namespace brindle
