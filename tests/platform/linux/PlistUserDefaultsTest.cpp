#include "platform/linux/PlistUserDefaults.h"

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/PlistUserDefaultsFixture.h"
#include "support/ChildOfTest.h"

#include <QByteArray>
#include <QCoreApplication>

#include <pwd.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <optional>
#include <tuple>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

using Date = PropertyValue::Date;
using Dictionary = PropertyValue::Dictionary;

class PlistUserDefaultsTest : public testing::Test, protected PlistUserDefaultsFixture {};

mode_t modeOf(const fs::path &path)
{
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

/// Counts how often a file of a folder is replaced.
class Replacements {
public:
    explicit Replacements(const fs::path &file) : m_name(file.filename()), m_inotify(::inotify_init1(IN_NONBLOCK))
    {
        EXPECT_GE(::inotify_add_watch(m_inotify.value(), file.parent_path().c_str(), IN_MOVED_TO), 0);
    }

    [[nodiscard]] int count()
    {
        alignas(inotify_event) std::array<char, 4096> buffer;
        const ssize_t length = ::read(m_inotify.value(), buffer.data(), buffer.size());
        for (ssize_t at = 0; at < length;) {
            const auto *event = reinterpret_cast<const inotify_event *>(buffer.data() + at);
            m_count += m_name == event->name ? 1 : 0;
            at += static_cast<ssize_t>(sizeof(inotify_event)) + event->len;
        }
        return m_count;
    }

private:
    fs::path m_name;
    FileDescriptor m_inotify;
    int m_count = 0;
};

TEST_F(PlistUserDefaultsTest, TakesAMissingFileForAnEmptyStoreAndTouchesNothing)
{
    const fs::path missing = folder() / "config" / "brindle" / "defaults.plist";
    {
        const PlistUserDefaults store(missing);

        EXPECT_EQ(store.object("ShowInternalDisks"), std::nullopt);
    }

    EXPECT_FALSE(fs::exists(folder() / "config"));
    EXPECT_THAT(log(), IsEmpty());
}

TEST_F(PlistUserDefaultsTest, MakesFoldersAndFilesForItsUserAlone)
{
    const fs::path file = folder() / "config" / "brindle" / "defaults.plist";
    const mode_t before = ::umask(0);
    {
        PlistUserDefaults store(file);
        store.set("LaunchMode", "window");
    }
    ::umask(before);

    EXPECT_EQ(modeOf(folder() / "config"), 0700U);
    EXPECT_EQ(modeOf(folder() / "config" / "brindle"), 0700U);
    EXPECT_EQ(modeOf(file), 0600U);
    EXPECT_EQ(modeOf(file.string() + ".lock"), 0600U);
}

TEST_F(PlistUserDefaultsTest, ReadsWhatAnEarlierStoreWrote)
{
    const Dictionary values{{"LaunchMode", "window"},
                            {"ShowSMARTStatus", true},
                            {"SUScheduledCheckInterval", 86400.0},
                            {"DiskManager.PersistedExpandedDisks", PropertyValue::Array{"disk0", "disk4"}}};
    {
        PlistUserDefaults store(file());
        for (const auto &[key, value] : values)
            store.set(key, value);
    }

    const PlistUserDefaults store(file());

    for (const auto &[key, value] : values)
        EXPECT_EQ(store.object(key), value);
    EXPECT_EQ(valuesInFile(), values);
    EXPECT_THAT(otherFiles(), IsEmpty());
}

TEST_F(PlistUserDefaultsTest, WritesAllChangesOfATurnOfTheEventLoopAtOnce)
{
    PlistUserDefaults store(file());
    Replacements replacements(file());

    for (int i = 0; i < 100; ++i)
        store.set("Key " + std::to_string(i), i);
    store.remove("Key 7");
    EXPECT_EQ(store.object("Key 99"), PropertyValue(99));
    EXPECT_EQ(replacements.count(), 0);
    QCoreApplication::processEvents();

    EXPECT_EQ(replacements.count(), 1);
    EXPECT_EQ(valuesInFile().size(), 99U);
    QCoreApplication::processEvents();
    store.synchronize();
    EXPECT_EQ(replacements.count(), 1);
}

TEST_F(PlistUserDefaultsTest, WritesAtOnceWhenSynchronized)
{
    PlistUserDefaults store(file());
    Replacements replacements(file());
    store.set("IsModeSwitchRelaunch", true);

    store.synchronize();

    EXPECT_EQ(valuesInFile(), (Dictionary{{"IsModeSwitchRelaunch", true}}));
    QCoreApplication::processEvents();
    EXPECT_EQ(replacements.count(), 1);
}

TEST_F(PlistUserDefaultsTest, DoesNotWriteWhatTheFileHoldsAlready)
{
    writeFile(Dictionary{{"LaunchMode", "window"}});
    PlistUserDefaults store(file());
    Replacements replacements(file());

    store.set("LaunchMode", "window");
    store.remove("IsModeSwitchRelaunch");
    store.synchronize();

    EXPECT_EQ(replacements.count(), 0);
}

TEST_F(PlistUserDefaultsTest, KeepsDatesExactThoughTheFileHoldsWholeSeconds)
{
    const Date date(1'719'837'296s + 750ms);
    PlistUserDefaults store(file());
    PlistUserDefaults other(file());
    store.set("DiskManager.LastRefreshTime", date);
    store.synchronize();
    other.set("LaunchMode", "window");
    other.synchronize();

    EXPECT_EQ(store.object("LaunchMode"), PropertyValue("window"));
    EXPECT_EQ(store.object("DiskManager.LastRefreshTime"), PropertyValue(date));
    EXPECT_EQ(other.object("DiskManager.LastRefreshTime"), PropertyValue(Date(1'719'837'296s)));

    other.set("DiskManager.LastRefreshTime", Date(1'719'837'300s));
    other.synchronize();

    EXPECT_EQ(store.object("DiskManager.LastRefreshTime"), PropertyValue(Date(1'719'837'300s)));
}

TEST_F(PlistUserDefaultsTest, ForgetsADateThatIsRemovedWhileAnotherStoreWrites)
{
    PlistUserDefaults store(file());
    PlistUserDefaults other(file());
    store.set("DiskManager.LastRefreshTime", Date(1'719'837'296s + 750ms));
    store.synchronize();

    store.remove("DiskManager.LastRefreshTime");
    other.set("LaunchMode", "window");
    other.synchronize();

    EXPECT_EQ(store.object("DiskManager.LastRefreshTime"), std::nullopt);
    store.synchronize();
    EXPECT_EQ(valuesInFile(), (Dictionary{{"LaunchMode", "window"}}));
}

TEST_F(PlistUserDefaultsTest, KeepsTextsExactThatTheFileCannotHoldAndLosesNoOtherKey)
{
    const std::string name("EFI\0\x1B\xFF", 6);
    writeFile(Dictionary{{"LaunchMode", "window"}});
    PlistUserDefaults store(file());

    store.set("AutoMountDiskUUIDs", Dictionary{{"5D2E8C1A", name}});
    store.synchronize();

    EXPECT_EQ(store.object("AutoMountDiskUUIDs"), PropertyValue(Dictionary{{"5D2E8C1A", name}}));
    EXPECT_EQ(valuesInFile(), (Dictionary{{"AutoMountDiskUUIDs", Dictionary{{"5D2E8C1A", "EFI\uFFFD\uFFFD\uFFFD"}}},
                                          {"LaunchMode", "window"}}));
}

TEST_F(PlistUserDefaultsTest, LeavesKeysAloneThatItDoesNotKnow)
{
    const Dictionary foreign{{"Foreign", PropertyValue::Array{1, Dictionary{{"a", 1.5}}}}, {"ShowDiskImages", "maybe"}};
    writeFile(foreign);
    PlistUserDefaults store(file());

    store.set("LaunchMode", "window");
    store.synchronize();

    Dictionary expected = foreign;
    expected.insert({"LaunchMode", "window"});
    EXPECT_EQ(valuesInFile(), expected);
}

TEST_F(PlistUserDefaultsTest, FollowsASymbolicLink)
{
    const fs::path target = folder() / "dotfiles" / "settings";
    fs::create_directory(folder() / "dotfiles");
    fs::create_symlink("dotfiles/settings", file());
    PlistUserDefaults store(file());

    store.set("LaunchMode", "window");
    store.synchronize();
    store.set("ShowSMARTStatus", true);
    store.synchronize();

    EXPECT_TRUE(fs::is_symlink(file()));
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(target)));
    EXPECT_EQ(valuesInFile(), (Dictionary{{"LaunchMode", "window"}, {"ShowSMARTStatus", true}}));
}

TEST_F(PlistUserDefaultsTest, GivesItsFilesToTheOwnerOfTheFolderWhenRunAsRoot)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can make files for another user";
    const fs::path home = folder() / "home";
    const fs::path settings = home / ".config" / "brindle" / "defaults.plist";
    fs::create_directory(home);
    ASSERT_EQ(::chown(home.c_str(), 65534, 65534), 0);

    {
        PlistUserDefaults store(settings);
        store.set("LaunchMode", "window");
    }

    for (const fs::path &path :
         {home / ".config", settings.parent_path(), settings, fs::path(settings.string() + ".lock")}) {
        struct stat status {};
        ASSERT_EQ(::stat(path.c_str(), &status), 0) << path;
        EXPECT_EQ(status.st_uid, 65534U) << path;
    }
}

/// Sets an environment variable, or removes it, and puts it back at its end.
class Environment {
public:
    Environment(const char *name, const std::optional<std::string> &value)
        : m_name(name),
          m_wasSet(qEnvironmentVariableIsSet(name)),
          m_before(qgetenv(name))
    {
        if (value)
            qputenv(name, QByteArray::fromStdString(*value));
        else
            qunsetenv(name);
    }
    ~Environment()
    {
        if (m_wasSet)
            qputenv(m_name, m_before);
        else
            qunsetenv(m_name);
    }
    Environment(const Environment &) = delete;
    Environment &operator=(const Environment &) = delete;

private:
    const char *m_name;
    bool m_wasSet;
    QByteArray m_before;
};

struct PathCase {
    const char *name;
    std::optional<std::string> configHome;
    std::optional<std::string> home;
    std::string path;
};

class FindsItsFile : public testing::TestWithParam<PathCase> {};

TEST_P(FindsItsFile, ByTheEnvironment)
{
    const Environment configHome("XDG_CONFIG_HOME", GetParam().configHome);
    const Environment home("HOME", GetParam().home);

    EXPECT_EQ(PlistUserDefaults::defaultPath(), GetParam().path);
}

std::string inDatabasesHome()
{
    return std::string(::getpwuid(::getuid())->pw_dir) + "/.config/brindle/com.orlane.Brindle.plist";
}

INSTANTIATE_TEST_SUITE_P(
    Variables, FindsItsFile,
    testing::Values(PathCase{"ConfigHome", "/x/config", "/home/u", "/x/config/brindle/com.orlane.Brindle.plist"},
                    PathCase{"ARelativeConfigHome", "config", "/home/u",
                             "/home/u/.config/brindle/com.orlane.Brindle.plist"},
                    PathCase{"AnEmptyConfigHome", "", "/home/u", "/home/u/.config/brindle/com.orlane.Brindle.plist"},
                    PathCase{"Home", std::nullopt, "/home/u", "/home/u/.config/brindle/com.orlane.Brindle.plist"},
                    PathCase{"ARelativeHome", std::nullopt, "u", inDatabasesHome()},
                    PathCase{"Nothing", std::nullopt, std::nullopt, inDatabasesHome()}),
    [](const auto &row) { return row.param.name; });

} // namespace
} // namespace brindle
