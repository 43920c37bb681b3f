// The real program, as a process that follows what happens to a machine until it is asked to end.

#include "cli/WatchFixture.h"

#include "support/Patience.h"

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
    const QDeadlineTimer deadline(kPatienceMilliseconds);
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
    ASSERT_TRUE(bash.waitForFinished(kPatienceMilliseconds));

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
