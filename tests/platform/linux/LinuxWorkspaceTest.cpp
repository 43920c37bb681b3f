#include "platform/linux/LinuxWorkspace.h"

#include "support/FileTree.h"
#include "support/Fixtures.h"
#include "support/ManualClock.h"
#include "support/WaitUntil.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>

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

TEST_F(LinuxWorkspaceTest, OpensAPathOnceWithinTwoSeconds)
{
    workspace.openFile("/media/one");
    clock.advance(1999ms);
    workspace.openFile("/media/one");
    EXPECT_EQ(opened(1), "1|/media/one\n");

    workspace.openFile("/media/two");
    EXPECT_EQ(opened(2), "1|/media/one\n1|/media/two\n");
    clock.advance(1ms);
    workspace.openFile("/media/one");
    EXPECT_EQ(opened(3), "1|/media/one\n1|/media/two\n1|/media/one\n");
}

TEST_F(LinuxWorkspaceTest, OpensNothingWithoutAnOpener)
{
    qputenv("PATH", "/nonexistent");

    workspace.openFile("/media/one");

    EXPECT_FALSE(fs::exists(root() + "/opened"));
}

} // namespace
} // namespace brindle
