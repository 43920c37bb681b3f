// The password is asked for in a real terminal.

#include "cli/ActingFixture.h"
#include "cli/TerminalProgram.h"

#include <csignal>
#include <fstream>

namespace brindle {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char *kPrompt = "Administrator Password: ";

class PasswordPrompt : public ActingFixture {
protected:
    TerminalProgram program(const std::vector<std::string> &arguments)
    {
        return {BRINDLECTL, arguments, environment(), becomeOrdinaryUser};
    }
};

TEST_F(PasswordPrompt, ShowsNothingOfWhatIsTypedAndMounts)
{
    TerminalProgram mount = program({"mount", "disk2s1"});
    EXPECT_THAT(mount.awaitText(kPrompt), HasSubstr("Administrator Access Required\r\nBrindle needs administrator"));
    EXPECT_FALSE(mount.echoes());

    mount.type(std::string(kAdminPassword) + "\n");

    EXPECT_EQ(mount.end(), 0);
    EXPECT_THAT(mount.shown(), HasSubstr("disk2s1 is mounted at "));
    EXPECT_THAT(mount.shown(), Not(HasSubstr(kAdminPassword)));
    EXPECT_TRUE(isMounted("disk2s1"));
}

TEST_F(PasswordPrompt, AsksOnceAndSaysThatAPasswordIsWrong)
{
    TerminalProgram mount = program({"mount", "disk2s1"});
    mount.awaitText(kPrompt);

    mount.type("wrong\n");

    EXPECT_EQ(mount.end(), 1);
    EXPECT_THAT(mount.shown(), HasSubstr("Authentication Failed\r\n"));
    EXPECT_THAT(mount.shown(), HasSubstr("brindlectl: Administrator password required\r\n"));
    EXPECT_FALSE(isMounted("disk2s1"));
}

struct CancelCase {
    const char *name;
    const char *key;
};

class CancelledPrompt : public PasswordPrompt, public testing::WithParamInterface<CancelCase> {};

TEST_P(CancelledPrompt, RestoresTheTerminalAndFails)
{
    TerminalProgram mount = program({"mount", "disk2s1"});
    mount.awaitText(kPrompt);

    mount.type(GetParam().key);

    mount.awaitText("brindlectl: Administrator password required\r\n");
    EXPECT_TRUE(mount.echoes());
    EXPECT_EQ(mount.end(), 1);
    EXPECT_THAT(mount.shown(), Not(HasSubstr("Authentication Failed")));
}

INSTANTIATE_TEST_SUITE_P(PasswordPrompt, CancelledPrompt,
                         testing::Values(CancelCase{"CtrlC", "\x03"}, CancelCase{"CtrlCBehindText", "abc\x03"},
                                         CancelCase{"CtrlBackslash", "\x1c"}, CancelCase{"CtrlD", "\x04"}),
                         [](const auto &row) { return row.param.name; });

TEST_F(PasswordPrompt, RestoresTheTerminalBeforeASignalEndsTheProgram)
{
    // The shell keeps the terminal, which ends with its last user, and tells the program's number.
    const std::string script = "echo $$ > \"$HOME/pid\"; exec \"$0\" mount disk2s1";
    TerminalProgram shell("/bin/sh", {"-c", "sh -c \"$1\" \"$0\"; echo \"ended by $?\"; read line", BRINDLECTL, script},
                          environment(), becomeOrdinaryUser);
    shell.awaitText(kPrompt);
    ASSERT_FALSE(shell.echoes());
    pid_t brindlectl = 0;
    std::ifstream(home() + "/pid") >> brindlectl;

    ASSERT_TRUE(brindlectl > 0 && ::kill(brindlectl, SIGTERM) == 0);

    shell.awaitText("ended by 143");
    EXPECT_TRUE(shell.echoes());
}

TEST_F(PasswordPrompt, RemovesADemoMachineWhenASignalComes)
{
    TerminalProgram mount = program({"mount", "disk2s1", "--demo=ask"});
    mount.awaitText(kPrompt);
    ASSERT_FALSE(QDir(QString::fromStdString(home())).entryList({QStringLiteral("brindle-demo-*")}).isEmpty());

    mount.signal(SIGTERM);

    EXPECT_EQ(mount.end(), -SIGTERM);
    EXPECT_TRUE(QDir(QString::fromStdString(home())).entryList({QStringLiteral("brindle-demo-*")}).isEmpty());
}

TEST_F(PasswordPrompt, ProvesAPasswordBeforeItIsStored)
{
    TerminalProgram right = program({"password", "set"});
    right.awaitText(kPrompt);
    right.type(std::string(kAdminPassword) + "\n");
    EXPECT_EQ(right.end(), 0);
    EXPECT_THAT(right.shown(), HasSubstr("The administrator password is stored\r\n"));

    TerminalProgram wrong = program({"password", "set"});
    wrong.awaitText(kPrompt);
    wrong.type("wrong\n");
    EXPECT_EQ(wrong.end(), 1);
    EXPECT_THAT(wrong.shown(), HasSubstr("brindlectl: No password was stored"));
}

TEST_F(PasswordPrompt, IsNotNeededToTestAGivenPassword)
{
    EXPECT_EQ(run({"password", "test", "--password-stdin"}, std::string(kAdminPassword) + "\n").output,
              "The administrator password is right\n");
    EXPECT_EQ(run({"password", "test", "--password-stdin"}, "wrong\n").error,
              "brindlectl: sudo refuses the administrator password\n");
    EXPECT_EQ(run({"password", "test"}).error, "brindlectl: No administrator password is stored\n");
    EXPECT_EQ(run({"password", "remove"}).output, "No administrator password is stored\n");
    EXPECT_EQ(run({"password", "set"}).status, 1);
}

TEST_F(PasswordPrompt, TakesNoGivenPasswordForWhatIsStoredOrRemoved)
{
    for (const char *change : {"set", "remove"}) {
        const Outcome outcome = run({"password", change, "--password-stdin"}, std::string(kAdminPassword) + "\n");

        EXPECT_EQ(outcome.status, 2) << change;
        EXPECT_EQ(outcome.output, "");
    }
}

} // namespace
} // namespace brindle
