#include "platform/linux/PlistUserDefaults.h"

#include "platform/linux/PlistUserDefaultsFixture.h"
#include "support/ChildOfTest.h"
#include "support/Sanitizer.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <functional>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;
using testing::StartsWith;

using Data = PropertyValue::Data;
using Dictionary = PropertyValue::Dictionary;

struct DamageCase {
    const char *name;
    std::function<void(const fs::path &file)> make;
    const char *reason;
};

void copyFixture(const char *name, const fs::path &file)
{
    std::ofstream(file, std::ios::binary) << fixture(std::string("plist/") + name);
}

class SetsAside : public testing::TestWithParam<DamageCase>, protected PlistUserDefaultsFixture {};

TEST_P(SetsAside, AFileThatIs)
{
    const WithoutRootsRights rights(folder());
    GetParam().make(file());
    struct stat damaged {};
    ASSERT_EQ(::lstat(file().c_str(), &damaged), 0);

    {
        PlistUserDefaults store(file());
        EXPECT_EQ(store.object("LaunchMode"), std::nullopt);
        EXPECT_FALSE(fs::exists(fs::symlink_status(file())));
        store.set("ShowSMARTStatus", true);
    }

    EXPECT_EQ(valuesInFile(), (Dictionary{{"ShowSMARTStatus", true}}));
    ASSERT_THAT(otherFiles(), ElementsAre(MatchesRegex("com\\.orlane\\.Brindle\\.plist\\.damaged-[0-9]{8}T[0-9]{6}Z")));
    const fs::path aside = folder() / otherFiles().front();
    struct stat kept {};
    ASSERT_EQ(::lstat(aside.c_str(), &kept), 0);
    EXPECT_EQ(kept.st_ino, damaged.st_ino);
    EXPECT_EQ(kept.st_mode, damaged.st_mode);
    EXPECT_EQ(kept.st_size, damaged.st_size);
    EXPECT_THAT(log(), ElementsAre(AllOf(StartsWith("⚠️ User defaults unreadable, set aside as " + aside.string() +
                                                    ": " + file().string() + ": "),
                                         HasSubstr(GetParam().reason))));
}

INSTANTIATE_TEST_SUITE_P(
    Files, SetsAside,
    testing::Values(
        DamageCase{"Empty", [](const auto &file) { copyFixture("empty.plist", file); }, "line "},
        DamageCase{"Truncated", [](const auto &file) { copyFixture("truncated-between-keys.plist", file); }, "line "},
        DamageCase{"OfAnotherFormat", [](const auto &file) { copyFixture("binary.plist", file); }, "line "},
        DamageCase{"OfAWrongTypeAtTheTop", [](const auto &file) { copyFixture("array-at-the-top.plist", file); },
                   "no dictionary at the top"},
        DamageCase{"WithAMalformedValue", [](const auto &file) { copyFixture("integer-of-letters.plist", file); },
                   "line 8: not a number"},
        DamageCase{"Unreadable",
                   [](const auto &file) {
                       copyFixture("every-kind.plist", file);
                       fs::permissions(file, fs::perms::none);
                   },
                   "Permission denied"},
        DamageCase{"AFolder", [](const auto &file) { fs::create_directory(file); }, "not a regular file"},
        DamageCase{"APipe", [](const auto &file) { ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0); }, "not a regular file"},
        DamageCase{"ALinkToADevice", [](const auto &file) { fs::create_symlink("/dev/null", file); },
                   "not a regular file"},
        DamageCase{"ALinkToItself", [](const auto &file) { fs::create_symlink(file.filename(), file); },
                   "symbolic links"}),
    [](const auto &row) { return row.param.name; });

class PlistUserDefaultsFailureTest : public testing::Test, protected PlistUserDefaultsFixture {
protected:
    [[nodiscard]] std::string notWritten(const std::string &reason) const
    {
        return "⚠️ User defaults not written: " + file().string() + ": " + reason;
    }
};

TEST_F(PlistUserDefaultsFailureTest, GivesEachDamagedFileANameOfItsOwn)
{
    for (const char *damage : {"first", "second", "third"}) {
        writeFile(damage);
        EXPECT_EQ(PlistUserDefaults(file()).object("LaunchMode"), std::nullopt);
    }

    std::vector<std::string> contents;
    for (const std::string &name : otherFiles())
        contents.push_back(contentsOf(folder() / name));
    EXPECT_THAT(contents, testing::UnorderedElementsAre("first", "second", "third"));
}

TEST_F(PlistUserDefaultsFailureTest, KeepsValuesInMemoryWhenADamagedFileCannotBeSetAside)
{
    const WithoutRootsRights rights(folder());
    writeFile("damaged");
    std::ofstream(file().string() + ".lock");
    fs::permissions(folder(), fs::perms::owner_read | fs::perms::owner_exec);

    {
        PlistUserDefaults store(file());
        EXPECT_EQ(store.object("LaunchMode"), std::nullopt);
        for (const char *mode : {"window", "menubar"}) {
            store.set("LaunchMode", mode);
            store.synchronize();
            EXPECT_EQ(store.object("LaunchMode"), PropertyValue(mode));
        }
    }

    fs::permissions(folder(), fs::perms::owner_all);
    EXPECT_EQ(contentsOf(file()), "damaged");
    EXPECT_THAT(otherFiles(), IsEmpty());
    EXPECT_THAT(log(), ElementsAre(AllOf(StartsWith("⚠️ User defaults unreadable, kept in memory only: " +
                                                    file().string() + ": line 1: "),
                                         testing::EndsWith(" (" + file().string() + ": Permission denied)"))));
}

TEST_F(PlistUserDefaultsFailureTest, LeavesDamageThatComesLaterUntilItWritesItsLastGoodValues)
{
    writeFile(Dictionary{{"LaunchMode", "window"}, {"ShowSMARTStatus", true}});
    PlistUserDefaults store(file());
    EXPECT_EQ(store.object("LaunchMode"), PropertyValue("window"));

    writeFile("half a fi");
    EXPECT_EQ(store.object("LaunchMode"), PropertyValue("window"));
    EXPECT_EQ(contentsOf(file()), "half a fi");
    EXPECT_THAT(log(), IsEmpty());

    store.set("LaunchMode", "menubar");
    store.synchronize();
    EXPECT_EQ(valuesInFile(), (Dictionary{{"LaunchMode", "menubar"}, {"ShowSMARTStatus", true}}));
    ASSERT_THAT(otherFiles(), SizeIs(1));
    EXPECT_EQ(contentsOf(folder() / otherFiles().front()), "half a fi");
    EXPECT_THAT(log(), ElementsAre(StartsWith("⚠️ User defaults unreadable, set aside as ")));
}

TEST_F(PlistUserDefaultsFailureTest, TakesAFileBackThatIsWholeAgain)
{
    writeFile(Dictionary{{"LaunchMode", "window"}});
    const PlistUserDefaults store(file());
    EXPECT_EQ(store.object("LaunchMode"), PropertyValue("window"));

    writeFile("half a fi");
    EXPECT_EQ(store.object("LaunchMode"), PropertyValue("window"));
    writeFile(Dictionary{{"LaunchMode", "menubar"}});

    EXPECT_EQ(store.object("LaunchMode"), PropertyValue("menubar"));
    EXPECT_THAT(otherFiles(), IsEmpty());
}

TEST_F(PlistUserDefaultsFailureTest, KeepsTheOldFileAndItsChangesWhenAFileMayNotGrow)
{
    writeFile(Dictionary{{"LaunchMode", "window"}});
    const std::string before = contentsOf(file());

    const pid_t child = startChild([&] {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit small{1024, RLIM_INFINITY};
        const rlimit large{RLIM_INFINITY, RLIM_INFINITY};
        PlistUserDefaults store(file());
        ::setrlimit(RLIMIT_FSIZE, &small);

        store.set("Big", Data(5000));
        store.synchronize();
        store.set("Small", 1);
        store.synchronize();

        EXPECT_THAT(log(), ElementsAre(notWritten("File too large")));
        EXPECT_EQ(contentsOf(file()), before);
        EXPECT_THAT(otherFiles(), IsEmpty());
        EXPECT_EQ(store.object("Big"), PropertyValue(Data(5000)));
        EXPECT_EQ(store.object("Small"), PropertyValue(1));
        EXPECT_EQ(store.object("LaunchMode"), PropertyValue("window"));

        ::setrlimit(RLIMIT_FSIZE, &large);
        store.synchronize();
        EXPECT_EQ(valuesInFile(), (Dictionary{{"Big", Data(5000)}, {"LaunchMode", "window"}, {"Small", 1}}));

        ::setrlimit(RLIMIT_FSIZE, &small);
        store.set("Small", 2);
        store.synchronize();
        EXPECT_THAT(log(), SizeIs(2));
        ::setrlimit(RLIMIT_FSIZE, &large);
    });

    EXPECT_EQ(endOf(child), 0);
}

struct UnheldCase {
    const char *name;
    const char *content; ///< Of the dictionary, besides LaunchMode.
};

class KeepsACopyBeforeItWrites : public testing::TestWithParam<UnheldCase>, protected PlistUserDefaultsFixture {
protected:
    KeepsACopyBeforeItWrites()
    {
        writeFile("<plist><dict><key>LaunchMode</key><string>window</string>" + std::string(GetParam().content) +
                  "</dict></plist>");
    }
};

TEST_P(KeepsACopyBeforeItWrites, OfAFileThatHoldsMoreThanCanBeWritten)
{
    const std::string before = contentsOf(file());

    {
        PlistUserDefaults store(file());
        EXPECT_EQ(store.object("LaunchMode"), PropertyValue("window"));
        EXPECT_THAT(otherFiles(), IsEmpty());
        for (const bool isShown : {true, false}) {
            store.set("ShowSMARTStatus", isShown);
            store.synchronize();
        }
    }

    EXPECT_EQ(valuesInFile().at("LaunchMode"), PropertyValue("window"));
    EXPECT_EQ(valuesInFile().at("ShowSMARTStatus"), PropertyValue(false));
    ASSERT_THAT(otherFiles(), ElementsAre(MatchesRegex("com\\.orlane\\.Brindle\\.plist\\.damaged-[0-9]{8}T[0-9]{6}Z")));
    const fs::path copy = folder() / otherFiles().front();
    EXPECT_EQ(contentsOf(copy), before);
    EXPECT_EQ(fs::status(copy).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_THAT(log(), ElementsAre("⚠️ User defaults hold values that can't be kept, copied to " + copy.string()));
}

INSTANTIATE_TEST_SUITE_P(
    Files, KeepsACopyBeforeItWrites,
    testing::Values(UnheldCase{"ANumberOutOfRange", "<key>Foreign</key><integer>99999999999999999999999</integer>"},
                    UnheldCase{"ADateOutOfRange", "<key>Foreign</key><date>9999-01-01T00:00:00Z</date>"},
                    UnheldCase{"AnotherKind", "<key>Foreign</key><uid>3</uid>"},
                    UnheldCase{"AnotherKindFurtherDown",
                               "<key>Foreign</key><array><dict><key>A</key><uid>3</uid></dict>"
                               "</array>"},
                    UnheldCase{"AKeyTwice", "<key>Foreign</key><true/><key>Foreign</key><false/>"},
                    UnheldCase{"AKeyTwiceFurtherDown", "<key>Foreign</key><dict><key>A</key><true/><key>A</key><true/>"
                                                       "</dict>"}),
    [](const auto &row) { return row.param.name; });

TEST_F(PlistUserDefaultsFailureTest, KeepsACopyOfWhatAnotherProgramHasWrittenMeanwhile)
{
    PlistUserDefaults store(file());
    store.set("LaunchMode", "window");
    store.synchronize();
    const std::string foreign = "<plist><dict><key>Foreign</key><uid>3</uid></dict></plist>";
    writeFile(foreign);

    store.set("LaunchMode", "menubar");
    store.synchronize();

    ASSERT_THAT(otherFiles(), SizeIs(1));
    EXPECT_EQ(contentsOf(folder() / otherFiles().front()), foreign);
    EXPECT_EQ(valuesInFile(), (Dictionary{{"LaunchMode", "menubar"}}));
}

TEST_F(PlistUserDefaultsFailureTest, LeavesAFileAloneOfWhichItCanKeepNoCopy)
{
    const WithoutRootsRights rights(folder());
    const fs::path target = folder() / "elsewhere/settings";
    const std::string before = "<plist><dict><key>Foreign</key><uid>3</uid></dict></plist>";
    fs::create_directory(target.parent_path());
    std::ofstream(target) << before;
    fs::create_symlink(target, file());
    std::ofstream(file().string() + ".lock");
    fs::permissions(folder(), fs::perms::owner_read | fs::perms::owner_exec);

    PlistUserDefaults store(file());
    store.set("LaunchMode", "window");
    store.synchronize();
    store.synchronize();

    fs::permissions(folder(), fs::perms::owner_all);
    EXPECT_EQ(contentsOf(target), before);
    EXPECT_EQ(store.object("LaunchMode"), PropertyValue("window"));
    EXPECT_THAT(log(), ElementsAre(AllOf(StartsWith("⚠️ User defaults not written: " + file().string() + ".damaged-"),
                                         testing::EndsWith(": Permission denied"))));
}

constexpr int kNotPermitted = 77;

/// In a child: lays a file system of a few blocks over \a folder, seen by this process alone; ends it where it may not.
void mountTinyFileSystem(const fs::path &folder)
{
    if (::unshare(CLONE_NEWNS) == -1 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == -1 ||
        ::mount("none", folder.c_str(), "tmpfs", 0, "size=16k") == -1)
        ::_exit(kNotPermitted);
}

TEST_F(PlistUserDefaultsFailureTest, KeepsTheOldFileAndItsChangesOnAFullDisk)
{
    const pid_t child = startChild([&] {
        mountTinyFileSystem(folder());
        PlistUserDefaults store(file());
        store.set("LaunchMode", "window");
        store.synchronize();

        store.set("Big", Data(50'000));
        store.synchronize();
        store.synchronize();

        EXPECT_THAT(log(), ElementsAre(notWritten("No space left on device")));
        EXPECT_EQ(valuesInFile(), (Dictionary{{"LaunchMode", "window"}}));
        EXPECT_THAT(otherFiles(), IsEmpty());
        EXPECT_EQ(store.object("Big"), PropertyValue(Data(50'000)));

        EXPECT_EQ(::mount("none", folder().c_str(), nullptr, MS_REMOUNT, "size=1m"), 0);
        store.synchronize();
        EXPECT_EQ(valuesInFile(), (Dictionary{{"Big", Data(50'000)}, {"LaunchMode", "window"}}));
    });

    const int end = endOf(child);
    if (end == kNotPermitted)
        GTEST_SKIP() << "this user may not mount a file system in a namespace";
    EXPECT_EQ(end, 0);
}

TEST_F(PlistUserDefaultsFailureTest, KeepsItsChangesWhileTheFolderIsReadOnly)
{
    const WithoutRootsRights rights(folder());
    writeFile(Dictionary{{"LaunchMode", "window"}});
    PlistUserDefaults store(file());
    fs::permissions(folder(), fs::perms::owner_read | fs::perms::owner_exec);

    store.set("ShowSMARTStatus", true);
    store.synchronize();
    store.set("ShowDiskImages", true);
    store.synchronize();
    EXPECT_EQ(store.object("LaunchMode"), PropertyValue("window"));
    EXPECT_TRUE(store.boolForKey("ShowSMARTStatus"));
    EXPECT_THAT(log(), ElementsAre("⚠️ User defaults not written: " + file().string() + ".lock: Permission denied"));

    fs::permissions(folder(), fs::perms::owner_all);
    store.synchronize();
    EXPECT_EQ(valuesInFile(),
              (Dictionary{{"LaunchMode", "window"}, {"ShowDiskImages", true}, {"ShowSMARTStatus", true}}));
}

TEST_F(PlistUserDefaultsFailureTest, SetsNothingAsideForWantOfDescriptors)
{
    if (kSanitizerNeedsDescriptors)
        GTEST_SKIP() << "the sanitizer needs a descriptor of its own";
    writeFile(Dictionary{{"LaunchMode", "window"}});

    const pid_t child = startChild([&] {
        const PlistUserDefaults store(file());
        rlimit before{};
        ::getrlimit(RLIMIT_NOFILE, &before);
        const rlimit none{0, before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &none);

        EXPECT_EQ(store.object("LaunchMode"), std::nullopt);
        EXPECT_EQ(store.object("LaunchMode"), std::nullopt);
        EXPECT_THAT(log(), ElementsAre("⚠️ User defaults not read: " + file().string() + ": Too many open files"));

        ::setrlimit(RLIMIT_NOFILE, &before);
        EXPECT_EQ(store.object("LaunchMode"), PropertyValue("window"));
        EXPECT_THAT(otherFiles(), IsEmpty());
    });

    EXPECT_EQ(endOf(child), 0);
}

} // namespace
} // namespace brindle
