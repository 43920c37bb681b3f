// The real program, as a process that follows what happens to a machine until it is asked to end.

#include "cli/BrindlectlFixture.h"

#include <QDeadlineTimer>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

using Identifiers = std::vector<std::string>;

constexpr int kPatience = 30'000; // a hanging test fails; none waits for this

class Watch : public Brindlectl {
protected:
    ~Watch() override
    {
        watch.kill();
        watch.waitForFinished(kPatience);
    }

    /// The next line of standard output without its newline; empty where none comes.
    std::string nextLine()
    {
        const QDeadlineTimer deadline(kPatience);
        while (!watch.canReadLine() && watch.state() != QProcess::NotRunning && !deadline.hasExpired())
            watch.waitForReadyRead(100);
        return watch.readLine().trimmed().toStdString();
    }

    /// The identifiers of the next published list.
    Identifiers nextList()
    {
        const json list = json::parse(nextLine());
        Identifiers identifiers;
        for (const json &disk : list.at("disks"))
            identifiers.push_back(disk.at("identifier"));
        return identifiers;
    }

    /// The next published list that fits; an unplugged disk with volumes is told twice.
    Identifiers nextListWhere(const std::function<bool(const Identifiers &)> &fits)
    {
        Identifiers identifiers = nextList();
        while (!fits(identifiers))
            identifiers = nextList();
        return identifiers;
    }

    /// Signals the program; one that has ended has no number, and 0 would be this test's own group.
    void signal(int signalNumber) const
    {
        const auto program = static_cast<pid_t>(watch.processId());
        EXPECT_TRUE(program > 0 && ::kill(program, signalNumber) == 0);
    }

    /// Sends the signal; what the program ended with.
    int end(int signalNumber = SIGTERM)
    {
        signal(signalNumber);
        EXPECT_TRUE(watch.state() == QProcess::NotRunning || watch.waitForFinished(kPatience));
        EXPECT_EQ(watch.exitStatus(), QProcess::NormalExit);
        return watch.exitCode();
    }

    static std::string brindleMachine(const std::vector<std::string> &arguments)
    {
        QStringList list;
        for (const std::string &argument : arguments)
            list << QString::fromStdString(argument);
        QProcess process;
        process.start(QStringLiteral(BRINDLE_MACHINE), list);
        EXPECT_TRUE(process.waitForFinished(kPatience));
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
        return process.readAllStandardOutput().trimmed().toStdString();
    }

    QProcess watch;
};

TEST_F(Watch, PrintsTheListAtOnceAsAJsonObjectWithItsDate)
{
    machine.addDisk("disk0").named("APPLE SSD").withEFI("EFI", "/Volumes/EFI");
    start(watch, {"watch", "--json"});

    const json list = json::parse(nextLine());

    EXPECT_THAT(list.at("date").get<std::string>(),
                MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}[.][0-9]{3}Z"));
    EXPECT_EQ(list.size(), 2U);
    EXPECT_EQ(list.at("disks"), json::parse(run({"list", "--json"}).output));
    EXPECT_EQ(end(), 0);
    EXPECT_THAT(watch.readAllStandardOutput().toStdString(), IsEmpty());
    EXPECT_THAT(watch.readAllStandardError().toStdString(), IsEmpty());
}

TEST_F(Watch, PrintsTheTableBeneathItsDateForPeople)
{
    machine.addDisk("disk0").named("APPLE SSD").sized("500.3 GB");
    start(watch, {"watch"});

    EXPECT_THAT(nextLine(), MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}"));
    EXPECT_THAT(nextLine(), StartsWith("DISK "));
    EXPECT_THAT(nextLine(), StartsWith("disk0 "));
    EXPECT_EQ(end(), 0);
}

// --- plugging

TEST_F(Watch, FollowsPluggingOnAMachineFile)
{
    const std::string root = (machine.root() / "plugged").string();
    brindleMachine({"new", root});
    start(watch, {"watch", "--json"}, root);
    EXPECT_EQ(nextList(), (Identifiers{"disk0", "disk3", "disk2", "disk4", "disk5"}));

    const std::string stick = brindleMachine({"in", root, "disk7"});
    EXPECT_THAT(nextList(), Contains(stick));
    brindleMachine({"out", root, stick});
    EXPECT_EQ(nextListWhere([&](const Identifiers &list) { return std::ranges::count(list, stick) == 0; }),
              (Identifiers{"disk0", "disk3", "disk2", "disk4", "disk5"}));

    EXPECT_EQ(end(), 0);
}

TEST_F(Watch, FollowsPluggingOnTheDemoMachineAndLeavesNothingOfIt)
{
    start(watch, {"watch", "--demo", "--json"});
    EXPECT_THAT(nextList(), Contains("disk3"));

    brindleMachine({"out", fs::directory_iterator(temporary)->path().string(), "disk3"});
    EXPECT_EQ(nextListWhere([](const Identifiers &list) { return std::ranges::count(list, "disk3") == 0; }),
              (Identifiers{"disk0", "disk2", "disk4", "disk5"}));

    EXPECT_EQ(end(SIGINT), 0);
    EXPECT_TRUE(fs::is_empty(temporary));
}

TEST_F(Watch, LogsWhatItSeesWhenVerbose)
{
    machine.addDisk("disk0");
    start(watch, {"watch", "--json", "--verbose"});
    nextLine();

    EXPECT_EQ(end(), 0);

    const std::string log = watch.readAllStandardError().toStdString();
    EXPECT_THAT(log, HasSubstr("✅ DiskEventMonitor started\n"));
    EXPECT_THAT(log, HasSubstr("🛑 DiskEventMonitor stopped\n"));
}

// --- the end

class WatchInterrupted : public Watch, public testing::WithParamInterface<int> {};

TEST_P(WatchInterrupted, EndsWithZero)
{
    machine.addDisk("disk0");
    start(watch, {"watch", "--json"});
    nextLine();

    EXPECT_EQ(end(GetParam()), 0);
    EXPECT_THAT(watch.readAllStandardError().toStdString(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Watch, WatchInterrupted, testing::Values(SIGHUP, SIGINT, SIGTERM),
                         [](const auto &row) { return std::string("Signal") + sigabbrev_np(row.param); });

class WatchOfAHangingTool : public Watch, public testing::WithParamInterface<const char *> {
protected:
    /// Each run of the tool notes its number in a file and hangs, but a `diskutil info`, without which no scan begins.
    void letHang(const std::string &tool)
    {
        machine.replaceTool(tool, "#!/bin/sh\n[ \"$1\" != info ] || exit 1\necho $$ >>'" + numbers.string() +
                                      "'\nexec sleep 600\n");
    }

    [[nodiscard]] std::vector<pid_t> hangingTools() const
    {
        std::ifstream file(numbers);
        return {std::istream_iterator<pid_t>(file), std::istream_iterator<pid_t>()};
    }

    const fs::path numbers = machine.root() / "numbers";
};

TEST_P(WatchOfAHangingTool, LeavesNoToolBehind)
{
    machine.addDisk("disk0");
    letHang(GetParam());
    start(watch, {"watch", "--json"});
    const QDeadlineTimer deadline(kPatience);
    while (hangingTools().empty() && !deadline.hasExpired())
        watch.waitForFinished(10);
    ASSERT_FALSE(hangingTools().empty());

    EXPECT_EQ(end(), 0);

    for (const pid_t tool : hangingTools())
        EXPECT_EQ(::kill(tool, 0), -1) << tool;
    EXPECT_THAT(watch.readAllStandardOutput().toStdString(), IsEmpty());
}

// The first reads what the machine booted from, the others are a scan's.
INSTANTIATE_TEST_SUITE_P(Watch, WatchOfAHangingTool, testing::Values("nvram", "diskutil", "df"),
                         [](const auto &row) { return std::string(row.param); });

TEST_F(Watch, EndsWithoutAWordWhenItsReaderHasGone)
{
    machine.addDisk("disk0");
    QProcess bash;
    start(bash, {"-c", R"("$0" watch --json | head -n 1; echo "${PIPESTATUS[0]}")", BRINDLECTL},
          machine.root().string(), "bash");
    ASSERT_TRUE(bash.waitForFinished(kPatience));

    EXPECT_THAT(bash.readAllStandardOutput().toStdString(), MatchesRegex("[{].*[}]\n0\n"));
    EXPECT_THAT(bash.readAllStandardError().toStdString(), IsEmpty());
}

TEST_F(Watch, FailsWhenItsOutputCannotBeWritten)
{
    machine.addDisk("disk0");

    const Outcome outcome = run({"watch"}, QStringLiteral("/dev/full"));

    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.error, HasSubstr("No space left on device"));
}

TEST_F(Watch, OutlivesItsTerminalUnderNohup)
{
    machine.addDisk("disk0");
    start(watch, {"-c", "trap '' HUP; exec \"$0\" watch --json", BRINDLECTL}, machine.root().string(), "bash");
    nextLine();

    signal(SIGHUP);

    EXPECT_FALSE(watch.waitForFinished(300));
    EXPECT_EQ(end(), 0);
}

} // namespace
} // namespace brindle
