#include "platform/linux/PlistUserDefaults.h"

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/PlistUserDefaultsFixture.h"
#include "support/ChildOfTest.h"
#include "support/Patience.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

using Data = PropertyValue::Data;
using Dictionary = PropertyValue::Dictionary;

class PlistUserDefaultsSharingTest : public testing::Test, protected PlistUserDefaultsFixture {};

std::string keyOf(int writer, int number)
{
    return std::to_string(writer) + "." + std::to_string(number);
}

/// Runs the event loop until \a store has told of a change, as long as tests wait.
void waitForChange(UserDefaults &store)
{
    QEventLoop loop;
    QObject::connect(&store, &UserDefaults::valueChanged, &loop, &QEventLoop::quit);
    QTimer::singleShot(kPatience, &loop, &QEventLoop::quit);
    loop.exec();
}

int openInotifies()
{
    int count = 0;
    for (const auto &entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code isClosed;
        count += fs::read_symlink(entry, isClosed).string().find("inotify") != std::string::npos ? 1 : 0;
    }
    return count;
}

TEST_F(PlistUserDefaultsSharingTest, SeesWhatAnotherStoreHasWrittenAtTheNextRead)
{
    PlistUserDefaults one(file());
    PlistUserDefaults two(file());
    EXPECT_EQ(one.object("LaunchMode"), std::nullopt);

    for (const char *mode : {"window", "menubar", "windows"}) {
        two.set("LaunchMode", mode);
        EXPECT_NE(one.object("LaunchMode"), PropertyValue(mode));
        two.synchronize();
        EXPECT_EQ(one.object("LaunchMode"), PropertyValue(mode));
    }
    two.remove("LaunchMode");
    two.synchronize();
    EXPECT_EQ(one.object("LaunchMode"), std::nullopt);
}

TEST_F(PlistUserDefaultsSharingTest, LosesNothingWhenTwoStoresWriteInTurn)
{
    PlistUserDefaults one(file());
    PlistUserDefaults two(file());
    one.set("Removed", true);
    one.synchronize();
    one.set("A", 1);
    two.set("B", 2);
    one.remove("Removed");

    two.synchronize();
    one.synchronize();
    two.set("C", 3);
    two.synchronize();

    EXPECT_EQ(valuesInFile(), (Dictionary{{"A", 1}, {"B", 2}, {"C", 3}}));
}

TEST_F(PlistUserDefaultsSharingTest, KeepsItsOwnChangeOverAnothersUntilItIsWritten)
{
    PlistUserDefaults one(file());
    PlistUserDefaults two(file());
    one.set("LaunchMode", "window");
    two.set("LaunchMode", "menubar");
    two.synchronize();

    EXPECT_EQ(one.object("LaunchMode"), PropertyValue("window"));
    one.synchronize();
    EXPECT_EQ(two.object("LaunchMode"), PropertyValue("window"));
}

TEST_F(PlistUserDefaultsSharingTest, LosesNothingWhenTwoProcessesWriteAtOnce)
{
    constexpr int kKeys = 200;
    const auto writeAll = [this](int writer) {
        PlistUserDefaults store(file());
        for (int i = 0; i < kKeys; ++i) {
            store.set(keyOf(writer, i), i);
            store.synchronize();
        }
    };

    const pid_t first = startChild([&] { writeAll(1); });
    const pid_t second = startChild([&] { writeAll(2); });

    EXPECT_EQ(endOf(first), 0);
    EXPECT_EQ(endOf(second), 0);
    const Dictionary values = valuesInFile();
    EXPECT_EQ(values.size(), 2U * kKeys);
    for (int i = 0; i < kKeys; ++i) {
        EXPECT_EQ(values.at(keyOf(1, i)), PropertyValue(i));
        EXPECT_EQ(values.at(keyOf(2, i)), PropertyValue(i));
    }
    EXPECT_THAT(otherFiles(), IsEmpty());
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(PlistUserDefaultsSharingTest, LeavesTheOldFileWhenItDiesInTheMiddleOfAWrite)
{
    writeFile(Dictionary{{"LaunchMode", "window"}});

    const pid_t child = startChild([this] {
        ::signal(SIGXFSZ, SIG_DFL); // the write that reaches the limit writes up to it and kills
        const rlimit noCore{0, 0};
        const rlimit limit{4096, 4096};
        ::setrlimit(RLIMIT_CORE, &noCore);
        PlistUserDefaults store(file());
        store.set("DiskManager.PersistedDisks", Data(100'000));
        ::setrlimit(RLIMIT_FSIZE, &limit);
        store.synchronize();
    });

    ASSERT_EQ(endOf(child), -SIGXFSZ);
    EXPECT_EQ(valuesInFile(), (Dictionary{{"LaunchMode", "window"}}));
    EXPECT_THAT(otherFiles(), ElementsAre("com.orlane.Brindle.plist.new"));

    PlistUserDefaults next(file());
    next.set("ShowSMARTStatus", true);
    next.synchronize();
    EXPECT_EQ(valuesInFile(), (Dictionary{{"LaunchMode", "window"}, {"ShowSMARTStatus", true}}));
    EXPECT_THAT(otherFiles(), IsEmpty());
}

TEST_F(PlistUserDefaultsSharingTest, LeavesAWholeFileWheneverItIsKilled)
{
    constexpr int kRounds = 30;
    for (int round = 0; round < kRounds; ++round) {
        std::array<int, 2> ends{};
        ASSERT_EQ(::pipe(ends.data()), 0);
        const FileDescriptor readEnd(ends[0]);
        FileDescriptor writeEnd(ends[1]);
        const pid_t child = startChild([&] {
            PlistUserDefaults store(file());
            for (int i = 0;; i = (i + 1) % 100) {
                store.set("Count", i);
                store.set("Data", Data(50'000, static_cast<std::byte>(i)));
                store.synchronize();
                if (::write(writeEnd.value(), "", 1) != 1)
                    return;
            }
        });
        char byte{};
        for (int writes = 0; writes <= round % 5; ++writes)
            ASSERT_EQ(::read(readEnd.value(), &byte, 1), 1);
        ::kill(child, SIGKILL);

        ASSERT_EQ(endOf(child), -SIGKILL);
        const Dictionary values = valuesInFile();
        ASSERT_TRUE(values.contains("Count"));
        const auto count = static_cast<std::byte>(*values.at("Count").as<std::int64_t>());
        EXPECT_EQ(values.at("Data"), PropertyValue(Data(50'000, count)));
    }
}

TEST_F(PlistUserDefaultsSharingTest, TellsOfWhatAnotherProcessChanges)
{
    writeFile(Dictionary{{"Kept", 1}, {"Changed", 1}, {"Removed", 1}, {"Rewritten", 1}});
    PlistUserDefaults store(file());
    std::vector<std::string> changed;
    QObject::connect(&store, &UserDefaults::valueChanged, [&](const std::string &key) { changed.push_back(key); });

    const pid_t child = startChild([this] {
        PlistUserDefaults other(file());
        other.set("Added", true);
        other.set("Changed", 2);
        other.remove("Removed");
        other.set("Rewritten", 1);
    });
    ASSERT_EQ(endOf(child), 0);
    waitForChange(store);

    EXPECT_THAT(changed, ElementsAre("Added", "Changed", "Removed"));
    EXPECT_EQ(store.object("Changed"), PropertyValue(2));
}

TEST_F(PlistUserDefaultsSharingTest, TellsOfAChangeAlsoWhereAReadHasSeenItBefore)
{
    writeFile(Dictionary{{"LaunchMode", "menubar"}});
    PlistUserDefaults store(file());
    std::vector<std::string> changed;
    QObject::connect(&store, &UserDefaults::valueChanged, [&](const std::string &key) { changed.push_back(key); });
    PlistUserDefaults other(file());
    other.set("LaunchMode", "window");
    other.synchronize();

    EXPECT_EQ(store.object("LaunchMode"), PropertyValue("window"));
    waitForChange(store);

    EXPECT_THAT(changed, ElementsAre("LaunchMode"));
}

TEST_F(PlistUserDefaultsSharingTest, TellsNobodyOfWhatWasBeforeTheConnection)
{
    writeFile(Dictionary{{"First", 1}});
    PlistUserDefaults store(file());
    PlistUserDefaults other(file());
    EXPECT_EQ(store.object("First"), PropertyValue(1));
    other.set("Second", 2);
    other.synchronize();
    EXPECT_EQ(store.object("Second"), PropertyValue(2));
    std::vector<std::string> changed;
    QObject::connect(&store, &UserDefaults::valueChanged, [&](const std::string &key) { changed.push_back(key); });

    other.set("Third", 3);
    other.synchronize();
    waitForChange(store);

    EXPECT_THAT(changed, ElementsAre("Third"));
}

TEST_F(PlistUserDefaultsSharingTest, TellsOfItsOwnChangeOnceAndOfAnothersWithTheWriteThatMeetsIt)
{
    PlistUserDefaults store(file());
    PlistUserDefaults other(file());
    std::vector<std::string> changed;
    QObject::connect(&store, &UserDefaults::valueChanged, [&](const std::string &key) { changed.push_back(key); });
    store.set("Own", 1);
    other.set("Other", 1);
    other.synchronize();

    store.synchronize();

    EXPECT_THAT(changed, ElementsAre("Own", "Other"));
    QCoreApplication::processEvents();
    EXPECT_THAT(changed, ElementsAre("Own", "Other"));
}

TEST_F(PlistUserDefaultsSharingTest, WatchesAFolderThatItsFirstWriteMakes)
{
    const fs::path late = folder() / "late" / "defaults.plist";
    PlistUserDefaults store(late);
    std::vector<std::string> changed;
    QObject::connect(&store, &UserDefaults::valueChanged, [&](const std::string &key) { changed.push_back(key); });
    store.set("Own", 1);
    store.synchronize();

    PlistUserDefaults other(late);
    other.set("Other", 1);
    other.synchronize();
    waitForChange(store);

    EXPECT_THAT(changed, ElementsAre("Own", "Other"));
}

TEST_F(PlistUserDefaultsSharingTest, WatchesNothingUntilSomebodyListens)
{
    const int before = openInotifies();
    PlistUserDefaults store(file());
    store.set("LaunchMode", "window");
    store.synchronize();
    EXPECT_EQ(openInotifies(), before);

    QObject::connect(&store, &UserDefaults::valueChanged, [](const std::string &) {});

    EXPECT_EQ(openInotifies(), before + 1);
}

} // namespace
} // namespace brindle
