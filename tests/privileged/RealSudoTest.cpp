// Run by real-sudo-test alone, as a user of its making: RealSudo as one whom sudo obeys, RealSudoWithoutARule as one
// whom it doesn't.

#include "privileged/KeychainFixture.h"
#include "privileged/RealSudoUser.h"

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/LinuxChildProcess.h"

#include <gmock/gmock.h>

#include <QTemporaryDir>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace brindle {
namespace {

using testing::HasSubstr;
using testing::Not;

class RealSudo : public KeychainFixture {
protected:
    void SetUp() override
    {
        ASSERT_NE(geteuid(), 0U) << "this test is no program to be run by hand";
        ASSERT_EQ(std::system("sudo -K"), 0); // forgets the proofs of the tests before
        (void)store.add(kPasswordKey, Secret(kSudoPassword));
    }

    KeychainHelper::Surroundings realProcesses()
    {
        return {.secretStore = store,
                .dialogs = dialogs,
                .childProcesses = realLauncher,
                .scheduler = clock,
                .userDefaults = defaults,
                .toolPaths = paths,
                .unfinishedWork = unfinishedWork};
    }

    LinuxChildProcessLauncher realLauncher;
    KeychainHelper helper{realProcesses()};
};

class RealSudoWithoutARule : public RealSudo {};

/// A tool that runs as root until it is told to end, and has begun once this is made.
class WaitingTool {
public:
    explicit WaitingTool(KeychainHelper &keychain)
    {
        mkfifo(begun().c_str(), 0666);
        mkfifo(goOn().c_str(), 0666);
        const std::string script = "exec 3<>\"$2\"; echo $PPID > \"$1\"; read line <&3";
        run = keychain.runPrivileged("/bin/sh", {"-c", script, "sh", begun(), goOn()});
        std::ifstream(begun()) >> sudo;
    }
    ~WaitingTool() { letEnd(); }
    WaitingTool(const WaitingTool &) = delete;
    WaitingTool &operator=(const WaitingTool &) = delete;

    void letEnd()
    {
        const FileDescriptor pipe(open(goOn().c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
        if (pipe) { // else nobody reads: the tool has ended already
            EXPECT_EQ(write(pipe.value(), "\n", 1), 1);
        }
    }

    QCoro::Task<std::string> run;
    pid_t sudo = 0;

private:
    std::string begun() { return m_folder.filePath(QStringLiteral("begun")).toStdString(); }
    std::string goOn() { return m_folder.filePath(QStringLiteral("go-on")).toStdString(); }

    QTemporaryDir m_folder;
};

TEST_F(RealSudo, ProvesTheRightPassword)
{
    EXPECT_TRUE(resultOf(helper.validateAdminPassword(Secret(kSudoPassword))));
}

TEST_F(RealSudo, RefusesAWrongAndAnEmptyPassword)
{
    EXPECT_FALSE(resultOf(helper.validateAdminPassword(Secret("wrong"))));
    EXPECT_FALSE(resultOf(helper.validateAdminPassword(Secret())));
}

// What sudo does with -v: the proof says that the user may, by a password of the last minutes or by this one. A command
// is run with -k and proves its password each time.
TEST_F(RealSudo, TakesAnyPasswordAsProvedWhileSudoRemembersTheLastProof)
{
    const bool wasRight = resultOf(helper.validateAdminPassword(Secret(kSudoPassword)));

    EXPECT_TRUE(wasRight);
    EXPECT_TRUE(resultOf(helper.validateAdminPassword(Secret("wrong"))));
}

TEST_F(RealSudo, RunsAToolAsRootWithItsArgumentsAsTheyStand)
{
    const std::string user = resultOf(helper.runPrivileged("/usr/bin/id", {"-u"}));
    const std::string arguments = resultOf(helper.runPrivileged("/usr/bin/printf", {"%s|", "a b", "$HOME", "-S", ""}));

    EXPECT_EQ(user, "0\n");
    EXPECT_EQ(arguments, "a b|$HOME|-S||");
}

TEST_F(RealSudo, LeavesTheToolNothingToReadOfThePassword)
{
    EXPECT_EQ(resultOf(helper.runPrivileged("/bin/cat", {})), "");
}

TEST_F(RealSudo, GivesTheStatusAndTheErrorTextOfTheTool)
{
    const Error error = errorOf(helper.runPrivileged("/bin/sh", {"-c", "echo no such disk >&2; exit 3"}));

    EXPECT_EQ(error.domain(), "SudoError");
    EXPECT_EQ(error.code(), 3);
    EXPECT_THAT(error.localizedDescription(), HasSubstr("no such disk\n"));
}

TEST_F(RealSudo, RefusesAWrongStoredPasswordEvenAfterAProofAndKeepsIt)
{
    const bool wasRight = resultOf(helper.validateAdminPassword(Secret(kSudoPassword)));
    (void)store.add(kPasswordKey, Secret("wrong"));

    const Error error = errorOf(helper.runPrivileged("/usr/bin/id", {}));

    EXPECT_TRUE(wasRight);
    EXPECT_EQ(error.domain(), "SudoError");
    EXPECT_EQ(error.code(), 1);
    EXPECT_THAT(error.localizedDescription(), HasSubstr("sudo: 1 incorrect password attempt"));
    EXPECT_EQ(store.find(kPasswordKey), Secret("wrong"));
}

TEST_F(RealSudo, EndsAToolThatOutlivesItsTime)
{
    WaitingTool tool(helper);

    clock.advance(std::chrono::seconds(45));
    const Error error = errorOf(std::move(tool.run));

    EXPECT_EQ(error.domain(), "SudoError");
    EXPECT_EQ(error.code(), SIGTERM);
}

TEST_F(RealSudo, ReportsThatItWasKilled)
{
    WaitingTool tool(helper);

    const int failure = kill(tool.sudo, SIGKILL);
    const Error error = errorOf(std::move(tool.run));

    EXPECT_EQ(failure, 0);
    EXPECT_EQ(error.domain(), "SudoError");
    EXPECT_EQ(error.code(), SIGKILL);
}

TEST_F(RealSudo, ShowsThePasswordInNoCommandLine)
{
    WaitingTool tool(helper);

    std::ifstream file("/proc/" + std::to_string(tool.sudo) + "/cmdline");
    const std::string commandLine{std::istreambuf_iterator<char>(file), {}};
    tool.letEnd();
    const std::string output = resultOf(std::move(tool.run));

    EXPECT_EQ(output, "");
    EXPECT_THAT(commandLine, HasSubstr("sudo"));
    EXPECT_THAT(commandLine, Not(HasSubstr(kSudoPassword)));
}

TEST_F(RealSudoWithoutARule, ProvesNothing)
{
    EXPECT_FALSE(resultOf(helper.validateAdminPassword(Secret(kSudoPassword))));
}

TEST_F(RealSudoWithoutARule, RunsNothingAndTellsWhy)
{
    const Error error = errorOf(helper.runPrivileged("/usr/bin/id", {}));

    EXPECT_EQ(error.domain(), "SudoError");
    EXPECT_EQ(error.code(), 1);
    EXPECT_THAT(error.localizedDescription(), HasSubstr("is not in the sudoers file"));
}

} // namespace
} // namespace brindle
