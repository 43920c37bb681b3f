#include "platform/linux/LinuxWorkspace.h"

#include "support/FileTree.h"
#include "support/Fixtures.h"
#include "support/ManualClock.h"
#include "support/WaitUntil.h"

#include <QTemporaryDir>
#include <QThreadPool>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include <pwd.h>
#include <unistd.h>

namespace brindle {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

/// A workspace whose xdg-open notes what it was asked for.
class LinuxWorkspaceTest : public testing::Test {
protected:
    LinuxWorkspaceTest()
    {
        const std::string program = root() + "/bin/xdg-open";
        writeFile(program, "#!/bin/sh\nprintf '%s|%s\\n' \"$#\" \"$1\" >> '" + root() + "/opened'\n");
        fs::permissions(program, fs::perms::owner_all);
        qputenv("PATH", QByteArray::fromStdString(root() + "/bin:") + m_path);
    }
    ~LinuxWorkspaceTest() override { qputenv("PATH", m_path); }

    std::string root() { return m_folder.path().toStdString(); }

    std::string folder(const char *name)
    {
        const std::string path = root() + "/" + name;
        fs::create_directory(path);
        return path;
    }

    /// What is noted when \a paths are opened one after the other.
    static std::string lines(const std::vector<std::string> &paths)
    {
        std::string text;
        for (const std::string &path : paths)
            text += "1|" + path + "\n";
        return text;
    }

    /// What was opened, once there are \a count lines of it.
    std::string opened(std::ptrdiff_t count)
    {
        waitUntil([&] { return fs::exists(root() + "/opened"); });
        waitUntil([&] {
            const std::string text = contentsOf(root() + "/opened");
            return std::count(text.begin(), text.end(), '\n') >= count;
        });
        return contentsOf(root() + "/opened");
    }

    ManualClock clock;
    LinuxWorkspace workspace{clock};

private:
    QByteArray m_path = qgetenv("PATH");
    QTemporaryDir m_folder;
};

TEST_F(LinuxWorkspaceTest, HandsThePathToTheOpenerAsOneArgument)
{
    workspace.openFile("/media/$(reboot); a b é");

    EXPECT_EQ(opened(1), "1|/media/$(reboot); a b é\n");
}

TEST_F(LinuxWorkspaceTest, OpensAFolderOnceWithinTwoSeconds)
{
    const std::string one = folder("one");
    const std::string two = folder("two");

    workspace.openFile(one);
    clock.advance(1999ms);
    workspace.openFile(one);
    EXPECT_EQ(opened(1), lines({one}));

    workspace.openFile(two);
    EXPECT_EQ(opened(2), lines({one, two}));
    clock.advance(1ms);
    workspace.openFile(one);
    EXPECT_EQ(opened(3), lines({one, two, one}));
}

TEST_F(LinuxWorkspaceTest, OpensAFileAsOftenAsItIsAskedTo)
{
    const std::string file = folder("one") + "/config.plist";
    writeFile(file, "");

    workspace.openFile(file);
    workspace.openFile(file);

    EXPECT_EQ(opened(2), lines({file, file}));
}

TEST_F(LinuxWorkspaceTest, OpensTheUsersFolderOfRemovableMediaForThatOfAllVolumes)
{
    const passwd *const user = ::getpwuid(::getuid());
    ASSERT_TRUE(user);

    workspace.openFile("/Volumes");

    EXPECT_EQ(opened(1), lines({std::string("/run/media/") + user->pw_name}));
}

TEST_F(LinuxWorkspaceTest, OpensNothingWithoutAnOpener)
{
    qputenv("PATH", "/nonexistent");

    workspace.openFile("/media/one");
    QThreadPool::globalInstance()->waitForDone();

    EXPECT_FALSE(fs::exists(root() + "/opened"));
}

} // namespace
} // namespace brindle
