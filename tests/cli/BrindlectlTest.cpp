// The real program, as a process, on simulated machines.

#include "cli/BrindlectlFixture.h"

#include "support/Patience.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

TEST_F(Brindlectl, ListsAMachineAsJsonAndPrintsNothingElse)
{
    machine.addDisk("disk0").named("APPLE SSD").sized("500.3 GB").withEFI("EFI", "/Volumes/EFI");
    machine.addDisk("disk2").named("Stick").removable().onBus("USB");

    const Outcome list = run({"list", "--json"});

    EXPECT_EQ(list.status, 0);
    EXPECT_THAT(list.error, IsEmpty());
    const auto disks = nlohmann::json::parse(list.output);
    ASSERT_EQ(disks.size(), 2U);
    EXPECT_EQ(disks[0].at("identifier"), "disk0");
    EXPECT_EQ(disks[0].at("name"), "APPLE SSD");
    EXPECT_EQ(disks[0].at("size"), "500.3 GB");
    EXPECT_EQ(disks[0].at("diskType"), "physicalInternal");
    EXPECT_EQ(disks[0].at("efiPartitions").at(0).at("mountPoint"), "/Volumes/EFI");
    EXPECT_EQ(disks[1].at("diskType"), "removable");
    EXPECT_FALSE(disks[1].contains("volumeName"));
}

TEST_F(Brindlectl, PrintsAPlainTableWhenNotOnATerminal)
{
    machine.addDisk("disk0").named("APPLE SSD").sized("500.3 GB").withEFI("EFI");

    const Outcome list = run({"list"});

    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(list.output, "DISK       NAME       TYPE          SIZE  USED  SMART     HOLDS  VOLUMES\n"
                           "disk0      APPLE SSD  internal  500.3 GB     –  verified  –\n"
                           "  disk0s1  EFI        EFI       not mounted\n");
}

TEST_F(Brindlectl, WritesTheLogToStandardErrorWhenVerbose)
{
    machine.addDisk("disk0");

    const Outcome list = run({"list", "--json", "--verbose"});

    EXPECT_THAT(list.error, HasSubstr("   ➡️ Fetching disk list\n"));
    EXPECT_EQ(list.identifiers(), std::vector<std::string>{"disk0"});
}

TEST_F(Brindlectl, LetsNoNameOfADiskReachTheTerminalAsACommand)
{
    machine.addDisk("disk0").named("\x1b]0;owned\x07\u009B31m\u202Egnp").withEFI("\x1b[2JEFI");
    machine.addDisk("disk1").infoAnswers({.standardError = "one \x1b[2J\ntwo \u202E\n", .status = 1});

    const Outcome list = run({"list", "--verbose"});

    for (const std::string &text : {list.output, list.error}) {
        EXPECT_THAT(text, Not(HasSubstr("\x1b")));
        EXPECT_THAT(text, Not(HasSubstr("\u009B")));
        EXPECT_THAT(text, Not(HasSubstr("\u202E")));
    }
    EXPECT_THAT(list.error, HasSubstr("Created disk: <U+001B>]0;owned<U+0007><U+009B>31m<U+202E>gnp (disk0)"));
    EXPECT_THAT(list.error, HasSubstr("Failed to get info for disk1: one <U+001B>[2J\ntwo <U+202E>\n"));
}

TEST_F(Brindlectl, LetsNoErrorReachTheTerminalAsACommand)
{
    // Its demo machine is looked for beside it, and the error names the place.
    program = machine.root() / "\x1b[2J\u202Efolder/brindlectl";
    std::filesystem::create_directory(program.parent_path());
    std::filesystem::copy_file(BRINDLECTL, program);

    const Outcome list = run({"list", "--demo"});

    EXPECT_EQ(list.status, 1);
    EXPECT_THAT(list.error, StartsWith("brindlectl: The demo machine can't be copied: "));
    EXPECT_THAT(list.error, Not(HasSubstr("\x1b")));
    EXPECT_THAT(list.error, HasSubstr("<U+001B>[2J<U+202E>folder"));
}

TEST_F(Brindlectl, ShowsDiskImagesOnlyWhenTheSettingsFileSaysTheBooleanTrue)
{
    machine.addDisk("disk0");
    machine.addDisk("disk4").diskImage();
    machine.answer("diskutil", "info disk4", {.standardOutput = "   Whole: Yes\n   Device / Media Name: Disk Image\n"});
    const auto store = machine.root() / "config/brindle/com.orlane.Brindle.plist";
    std::filesystem::create_directories(store.parent_path());
    const auto write = [&](const std::string &value) {
        std::ofstream(store) << "<?xml version=\"1.0\"?>\n<plist version=\"1.0\"><dict>"
                             << "<key>PreferencesInitialized</key><true/><key>ShowDiskImages</key>" << value
                             << "</dict></plist>\n";
    };

    write("<true/>");
    EXPECT_EQ(run({"list", "--json"}).identifiers(), (std::vector<std::string>{"disk0", "disk4"}));
    write("<integer>1</integer>");
    EXPECT_EQ(run({"list", "--json"}).identifiers(), std::vector<std::string>{"disk0"});
}

// --- tools in every kind of trouble

struct TroubleCase {
    const char *name;
    std::optional<std::string> program;
    bool executable;
};

class BrindlectlInTrouble : public Brindlectl, public testing::WithParamInterface<TroubleCase> {};

TEST_P(BrindlectlInTrouble, ListsNothingAndEndsWell)
{
    machine.replaceTool("diskutil", GetParam().program, GetParam().executable);

    const Outcome list = run({"list", "--json"});

    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(list.output, "[]\n");
    EXPECT_THAT(list.error, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Brindlectl, BrindlectlInTrouble,
                         testing::Values(TroubleCase{"Missing", std::nullopt, true},
                                         TroubleCase{"NotExecutable", "#!/bin/sh\n", false},
                                         TroubleCase{"Empty", "", true},
                                         TroubleCase{"Failing", "#!/bin/sh\nexit 3\n", true},
                                         TroubleCase{"Killed", "#!/bin/sh\nkill -9 $$\n", true},
                                         TroubleCase{"Garbage", "#!/bin/sh\nhead -c 100000 /dev/urandom\n", true}),
                         [](const auto &row) { return row.param.name; });

TEST_F(Brindlectl, EndsWellWhenAToolIsAFolder)
{
    machine.replaceTool("diskutil", std::nullopt);
    std::filesystem::create_directory(machine.root() / "usr/sbin/diskutil");

    EXPECT_EQ(run({"list", "--json"}).output, "[]\n");
}

TEST_F(Brindlectl, KeepsTheDisksThatAnotherDisksKilledToolLeaves)
{
    machine.replaceTool("diskutil", "#!/bin/sh\n"
                                    "[ \"$2\" = disk1 ] && kill -9 $$\n"
                                    "[ \"$1\" = info ] && echo 'Whole: Yes' && exit\n"
                                    "echo '/dev/disk0 (internal, physical):'\n"
                                    "echo '/dev/disk1 (internal, physical):'\n");

    EXPECT_EQ(run({"list", "--json"}).identifiers(), std::vector<std::string>{"disk0"});
}

// --- the demo machine

TEST_F(Brindlectl, ListsTheDemoMachineAndLeavesNothingOfIt)
{
    const Outcome list = run({"list", "--demo", "--json"});

    EXPECT_EQ(list.identifiers(), (std::vector<std::string>{"disk0", "disk3", "disk2", "disk4", "disk5"}));
    EXPECT_TRUE(std::filesystem::is_empty(temporary));
    EXPECT_TRUE(machine.calls().empty());
}

TEST_F(Brindlectl, TakesADemoMachineWhosePasswordIsAskedFor)
{
    const Outcome list = run({"list", "--demo=ask", "--json"});

    EXPECT_EQ(list.identifiers(), (std::vector<std::string>{"disk0", "disk3", "disk2", "disk4", "disk5"}));
    EXPECT_TRUE(machine.calls().empty());
}

TEST_F(Brindlectl, RefusesADemoMachineOfAnotherKind)
{
    const Outcome list = run({"list", "--demo=no"});

    EXPECT_EQ(list.status, 2);
    EXPECT_THAT(list.error, HasSubstr("--demo: takes ask or nothing"));
    EXPECT_THAT(list.output, IsEmpty());
}

TEST_F(Brindlectl, LeavesNothingOfTheDemoMachineWhenItIsInterrupted)
{
    int interrupted = 0;
    for (int round = 0; round < 20; ++round) {
        QProcess process;
        start(process, {"list", "--demo"});
        while (process.state() != QProcess::NotRunning && std::filesystem::is_empty(temporary))
            process.waitForFinished(1);
        process.terminate();
        ASSERT_TRUE(process.waitForFinished(kPatienceMilliseconds));

        interrupted += process.exitStatus() == QProcess::CrashExit ? 1 : 0;
        EXPECT_TRUE(std::filesystem::is_empty(temporary));
    }
    EXPECT_GT(interrupted, 0) << "every list ended before it could be interrupted";
}

// --- the running machine

TEST_F(Brindlectl, TellsWhatTheMachineBootedFromAsJsonAndPrintsNothingElse)
{
    machine.addDisk("disk0").withEFI("EFI");
    machine.addDisk("disk2").withPartition("Microsoft Basic Data", "DATA", "8.0 GB").withEFI("OPENCORE");
    const std::string guid = "4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102";
    machine.answer("diskutil", "info /",
                   {.standardOutput = "Part of Whole: disk1\nVolume Name: Mac\nAPFS Physical Store: disk0s2\n"});
    machine.answer("diskutil", "info disk0s1", {.standardOutput = "Disk / Partition UUID: none\n"});
    machine.answer("nvram", guid + ":opencore-version",
                   {.standardOutput = guid + ":opencore-version\tREL-099-2024-03-04\n"});
    machine.answer("nvram", guid + ":boot-path",
                   {.standardOutput = guid + ":boot-path\tHD(2,GPT,0E239BC6-F960-3107-89CF-1C97F78BB46B,0x28)\n"});

    const Outcome system = run({"system", "--json"});

    EXPECT_EQ(system.status, 0);
    EXPECT_THAT(system.error, IsEmpty());
    EXPECT_EQ(system.output, "{\n"
                             "  \"bootDiskIdentifier\": \"disk0\",\n"
                             "  \"bootloaderDiskIdentifier\": \"disk2\",\n"
                             "  \"openCoreVersion\": \"REL-099-2024-03-04\",\n"
                             "  \"bootVolumePath\": \"Mac\"\n"
                             "}\n");
}

TEST_F(Brindlectl, TellsWhatTheMachineBootedFromAsAPlainTable)
{
    machine.answer("diskutil", "info /", {.standardOutput = "Part of Whole: disk1\nVolume Name: Evil\x1b[2J\n"});
    machine.answer("nvram", "clover-version", {.standardOutput = "clover-version\t5152\n"});

    const Outcome system = run({"system"});

    EXPECT_EQ(system.status, 0);
    EXPECT_EQ(system.output, "Boot disk         disk1\n"
                             "Boot loader disk  unknown\n"
                             "OpenCore          not found\n"
                             "Clover            5152\n"
                             "Boot volume       Evil<U+001B>[2J\n");
}

TEST_F(Brindlectl, TellsNothingOfAMachineOfWhichNothingIsKnown)
{
    machine.replaceTool("diskutil", std::nullopt);
    machine.replaceTool("nvram", "#!/bin/sh\nexit 3\n");

    const Outcome system = run({"system", "--json"});

    EXPECT_EQ(system.status, 0);
    EXPECT_EQ(system.output, "{}\n");
    EXPECT_THAT(system.error, IsEmpty());
}

TEST_F(Brindlectl, CallsAVolumeWithoutANameUnknownInTheTableAndKeepsItInTheJson)
{
    machine.answer("diskutil", "info /", {.standardOutput = "Volume Name:\n"});

    EXPECT_THAT(run({"system"}).output, HasSubstr("Boot volume       unknown\n"));
    EXPECT_EQ(run({"system", "--json"}).output, "{\n  \"bootVolumePath\": \"\"\n}\n");
}

TEST_F(Brindlectl, TellsWhatTheDemoMachineBootedFrom)
{
    const Outcome system = run({"system", "--demo", "--json"});

    EXPECT_EQ(nlohmann::json::parse(system.output), (nlohmann::json{{"bootDiskIdentifier", "disk0"},
                                                                    {"bootloaderDiskIdentifier", "disk3"},
                                                                    {"openCoreVersion", "REL-099-2024-03-04"},
                                                                    {"bootVolumePath", "Macintosh HD"}}));
    EXPECT_TRUE(std::filesystem::is_empty(temporary));
    EXPECT_TRUE(machine.calls().empty());
}

// --- the command line

TEST_F(Brindlectl, TellsTheHelpOfEachCommandThatItsHelpNames)
{
    const std::string help = run({"--help"}).output;

    for (const std::string name : {"list",  "info",    "rows",      "height",       "icon-state", "system",    "copy",
                                   "save",  "verify",  "erase-efi", "erase-volume", "erase-disk", "automount", "watch",
                                   "mount", "unmount", "rename",    "eject",        "password",   "settings"}) {
        const Outcome named = run({name, "--help"});
        const Outcome unnamed = run({"--help", name});

        EXPECT_THAT(help, HasSubstr("\n  " + name + " "));
        EXPECT_EQ(named.status, 0);
        EXPECT_THAT(named.output, HasSubstr("Usage: brindlectl " + name));
        EXPECT_EQ(unnamed.output, named.output);
    }
}

TEST_F(Brindlectl, LoadsNoLibraryAtItsStartThatFewRunsNeed)
{
    qputenv("LD_TRACE_LOADED_OBJECTS", "1"); // the loader tells what it loads, and ends

    const Outcome start = run({});

    qunsetenv("LD_TRACE_LOADED_OBJECTS");
    EXPECT_THAT(start.output, HasSubstr("libQt6Core"));
    for (const char *library : {"libsecret", "libcrypto", "libQt6DBus", "libfdisk"})
        EXPECT_THAT(start.output, Not(HasSubstr(library)));
}

TEST_F(Brindlectl, TellsItsVersionAndItsHelp)
{
    EXPECT_THAT(run({"--version"}).output, StartsWith("brindlectl "));
    const Outcome help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, HasSubstr("list"));
    EXPECT_THAT(run({"list", "--help"}).output, HasSubstr("--json"));
}

TEST_F(Brindlectl, EndsWithTwoOnWrongUsage)
{
    for (const std::vector<std::string> &arguments : {std::vector<std::string>{},
                                                      {"lst"},
                                                      {"list", "--yaml"},
                                                      {"list", "disk0"},
                                                      {"system", "disk0"},
                                                      {"completion", "tcsh"}}) {
        const Outcome wrong = run(arguments);
        EXPECT_EQ(wrong.status, 2);
        EXPECT_THAT(wrong.output, IsEmpty());
        EXPECT_THAT(wrong.error, Not(IsEmpty()));
    }
}

TEST_F(Brindlectl, FailsWhenItsOutputCannotBeWritten)
{
    machine.addDisk("disk0");

    for (const std::vector<std::string> &arguments :
         {std::vector<std::string>{"list"}, {"--help"}, {"list", "--help"}, {"--version"}, {"completion", "bash"}}) {
        const Outcome outcome = run(arguments, QStringLiteral("/dev/full"));
        EXPECT_EQ(outcome.status, 1) << arguments[0];
        EXPECT_THAT(outcome.error, HasSubstr("No space left on device")) << arguments[0];
    }
}

TEST_F(Brindlectl, FailsWhenMoreThanABufferOfOutputCannotBeWritten)
{
    for (int number = 0; number < 12; ++number)
        machine.addDisk(fmt::format("disk{}", number)).named(std::string(400, 'x'));

    const Outcome list = run({"list", "--json"}, QStringLiteral("/dev/full"));

    EXPECT_EQ(list.status, 1);
    EXPECT_THAT(list.error, HasSubstr("No space left on device"));
}

TEST_F(Brindlectl, DoesAllItsWorkWhenItsReaderHasGone)
{
    for (int number = 0; number < 12; ++number)
        machine.addDisk(fmt::format("disk{}", number)).named(std::string(400, 'x'));
    QProcess process;
    Reader reader(process);
    reader.go();
    start(process, {"list", "--json"});

    ASSERT_TRUE(process.waitForFinished(kPatienceMilliseconds));

    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(process.exitCode(), SIGPIPE);
    EXPECT_THAT(run({"settings", "get", "DiskManager.PersistedDisks"}).output, HasSubstr("disk11"));
}

TEST_F(Brindlectl, LeavesNothingOfTheDemoMachineWhenItsReaderHasGone)
{
    QProcess process;
    Reader reader(process);
    reader.go();
    start(process, {"list", "--json", "--demo"});

    ASSERT_TRUE(process.waitForFinished(kPatienceMilliseconds));

    EXPECT_EQ(process.exitCode(), SIGPIPE);
    EXPECT_TRUE(std::filesystem::is_empty(temporary));
}

TEST_F(Brindlectl, EndsWithItsStatusAlsoWhereNobodyReadsWhatItComplainsOf)
{
    machine.addDisk("disk0");
    for (const auto &[arguments, status] : {std::pair(std::vector<std::string>{"foo"}, 2),
                                            {{"info", "disk9"}, 3},
                                            {{"settings", "get", "NoSuchKey"}, 2}}) {
        QProcess process;
        Reader reader(process);
        reader.go();
        start(process, arguments);

        ASSERT_TRUE(process.waitForFinished(kPatienceMilliseconds));

        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit) << arguments[0];
        EXPECT_EQ(process.exitCode(), status) << arguments[0];
    }
}

TEST_F(Brindlectl, TellsAWrongArgumentWithoutObeyingIt)
{
    const Outcome wrong = run({"list", "\x1b[2J"});

    EXPECT_EQ(wrong.status, 2);
    EXPECT_THAT(wrong.error, Not(HasSubstr("\x1b")));
    EXPECT_THAT(wrong.error, HasSubstr("<U+001B>[2J"));
}

} // namespace
} // namespace brindle
