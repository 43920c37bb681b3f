// The real programs: a marked stick is plugged into a simulated machine while `watch --automount` runs.

#include "cli/WatchFixture.h"

#include "support/FakeNotificationDaemon.h"
#include "support/FileTree.h"
#include "support/Patience.h"
#include "support/PrivateBus.h"
#include "support/WaitUntil.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

namespace brindle {
namespace {

using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

/// A simulated machine with a marked stick that is plugged out.
class WatchAutoMount : public Watch {
protected:
    WatchAutoMount()
    {
        brindleMachine({"new", root});
        const std::string stick = brindleMachine({"in", root, "disk7"});
        EXPECT_EQ(runHere({"automount", "add", stick}), 0);
        brindleMachine({"out", root, stick});
        shelved = stick;
    }

    int runHere(const std::vector<std::string> &arguments)
    {
        QProcess process;
        start(process, arguments, root);
        EXPECT_TRUE(process.waitForFinished(kPatienceMilliseconds));
        return process.exitCode();
    }

    /// Starts the watch with \a moreArguments and the machine's password, and waits for its first list.
    void startWatch(const std::vector<std::string> &moreArguments)
    {
        std::vector<std::string> arguments{"watch", "--json", "--verbose", "--password-stdin"};
        arguments.insert(arguments.end(), moreArguments.begin(), moreArguments.end());
        start(watch, arguments, root);
        watch.write("brindle\n");
        (void)nextList();
    }

    /// The EFI partition of \a disk in the next list that fits \a isMounted; null where none comes.
    json nextPartition(const std::string &disk, bool isMounted)
    {
        for (std::string line = nextLine(); !line.empty(); line = nextLine()) {
            const json list = json::parse(line);
            for (const json &each : list.at("disks")) {
                if (each.at("identifier") == disk && each.at("efiPartitions").at(0).at("isMounted") == isMounted)
                    return each.at("efiPartitions").at(0);
            }
        }
        return {};
    }

    std::string log() { return watch.readAllStandardError().toStdString(); }

    std::string root = (machine.root() / "plugged").string();
    std::string shelved;
};

TEST_F(WatchAutoMount, MountsAMarkedStickWhenItIsPluggedIn)
{
    startWatch({"--automount"});

    const std::string stick = brindleMachine({"in", root, shelved});

    const json partition = nextPartition(stick, true);
    ASSERT_FALSE(partition.is_null()) << log();
    EXPECT_THAT(partition.at("mountPoint").get<std::string>(), HasSubstr(root + "/Volumes/"));
    EXPECT_EQ(end(), 0);
    EXPECT_THAT(log(), HasSubstr("   🏎️ Auto-mounting EFI for disk Kingston DataTraveler 3.0 ("));
}

TEST_F(WatchAutoMount, MountsNothingUnlessItIsAskedTo)
{
    startWatch({});

    const std::string stick = brindleMachine({"in", root, shelved});
    EXPECT_FALSE(nextPartition(stick, false).is_null());
    EXPECT_EQ(end(), 0);

    EXPECT_THAT(log(), testing::Not(HasSubstr("Auto-mounting")));
}

TEST_F(WatchAutoMount, GoesOnWhenThePasswordIsWrong)
{
    start(watch, {"watch", "--json", "--verbose", "--password-stdin", "--automount"}, root);
    watch.write("wrong\n");
    (void)nextList();

    const std::string stick = brindleMachine({"in", root, shelved});
    EXPECT_FALSE(nextPartition(stick, false).is_null());
    std::string text;
    waitUntil([&] {
        watch.waitForReadyRead(100);
        text += log();
        return text.find("   🏎️ ❌ Auto-mount failed: ") != std::string::npos;
    });
    brindleMachine({"out", root, stick});
    EXPECT_THAT(nextListWhere([&](const Identifiers &list) { return std::ranges::count(list, stick) == 0; }),
                Contains("disk0"));

    EXPECT_EQ(end(), 0);
}

/// The same with a sudo that doesn't end.
class WatchOfAHangingMount : public WatchAutoMount {
protected:
    WatchOfAHangingMount()
    {
        qputenv("ASAN_OPTIONS", "detect_leaks=0"); // the watch that ends leaves the mount as it is
        const std::string program = root + "/usr/bin/sudo";
        std::filesystem::remove(program); // a link to the one of all machines
        writeFile(program, "#!/bin/sh\necho $$ > '" + number.string() + "'\nexec sleep 600\n");
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    }
    ~WatchOfAHangingMount() override
    {
        const pid_t process = sudo(); // 0 would be this test's own group
        EXPECT_TRUE(process > 0 && ::kill(process, SIGKILL) == 0) << "it has ended with the watch";
    }

    void startMount()
    {
        startWatch({"--automount"});
        brindleMachine({"in", root, shelved});
        waitUntil([&] { return sudo() > 0; });
    }

private:
    /// Its process; 0 where it hasn't begun.
    [[nodiscard]] pid_t sudo() const
    {
        pid_t process = 0;
        std::ifstream(number) >> process;
        return process;
    }

    std::filesystem::path number = machine.root() / "number";
};

TEST_F(WatchOfAHangingMount, EndsAtOnceAtTheSecondInterruption)
{
    startMount();
    signal(SIGINT);
    EXPECT_FALSE(watch.waitForFinished(300));

    // Again and again: two signals that come before the program runs are one.
    for (int i = 0; i < 600 && watch.state() != QProcess::NotRunning; ++i) {
        signal(SIGINT);
        watch.waitForFinished(100);
    }

    EXPECT_EQ(watch.state(), QProcess::NotRunning);
    EXPECT_EQ(watch.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(watch.exitCode(), SIGINT);
}

/// The same on a session bus of the test's own.
class WatchNotify : public WatchAutoMount {
protected:
    void SetUp() override
    {
        if (const std::string obstacle = PrivateBus::obstacle(); !obstacle.empty())
            GTEST_SKIP() << obstacle;
        bus.emplace();
        daemon.emplace();
    }

    /// The first notification, which is \a title of the stick.
    void expectNotification(const char *title, const char *body)
    {
        waitUntil([&] { return !daemon->shown.empty(); });
        ASSERT_EQ(daemon->shown.size(), 1U);
        EXPECT_EQ(daemon->shown[0].summary.toStdString(), title);
        EXPECT_EQ(daemon->shown[0].body.toStdString(), body);
    }

    std::optional<PrivateBus> bus;
    std::optional<FakeNotificationDaemon> daemon;
};

TEST_F(WatchNotify, TellsOfTheMountAndOffersToShowIt)
{
    startWatch({"--automount", "--notify"});

    brindleMachine({"in", root, shelved});

    expectNotification("EFI Mounted", "Successfully mounted EFI partition for Kingston DataTraveler 3.0");
    EXPECT_THAT(daemon->shown.at(0).actions, Contains(QStringLiteral("OPEN_FINDER")));
    EXPECT_EQ(end(), 0);
}

TEST_F(WatchNotify, TellsNobodyUnlessItIsAskedTo)
{
    startWatch({"--automount"});

    const std::string stick = brindleMachine({"in", root, shelved});
    EXPECT_FALSE(nextPartition(stick, true).is_null());
    EXPECT_EQ(end(), 0);
    QCoreApplication::processEvents();

    EXPECT_THAT(daemon->shown, IsEmpty());
}

TEST_F(WatchNotify, IsThereForASingleMountTooWhichOffersNothingToClickOn)
{
    start(watch, {"mount", "disk0s1", "--password-stdin", "--notify"}, root);
    watch.write("brindle\n");

    expectNotification("EFI Mounted", "Successfully mounted EFI partition for Samsung SSD 980 PRO 1TB");
    EXPECT_THAT(daemon->shown.at(0).actions, IsEmpty());
    EXPECT_TRUE(watch.waitForFinished(kPatienceMilliseconds));
    EXPECT_EQ(watch.exitCode(), 0);
}

TEST_F(WatchNotify, IsThereForAMountThatFails)
{
    start(watch, {"mount", "disk0s1", "--password-stdin", "--notify"}, root);
    watch.write("wrong\n");

    expectNotification("Mount Failed", "Failed to mount EFI partition for Samsung SSD 980 PRO 1TB");
    EXPECT_TRUE(watch.waitForFinished(kPatienceMilliseconds));
    EXPECT_EQ(watch.exitCode(), 1);
}

TEST_F(WatchNotify, HoldsNothingUpWhereThereIsNoDaemon)
{
    daemon.reset();

    start(watch, {"mount", "disk0s1", "--password-stdin", "--notify", "--verbose"}, root);
    watch.write("brindle\n");

    EXPECT_TRUE(watch.waitForFinished(kPatienceMilliseconds));
    EXPECT_EQ(watch.exitCode(), 0);
    EXPECT_THAT(log(), HasSubstr("Failed to show notification: "));
}

} // namespace
} // namespace brindle
