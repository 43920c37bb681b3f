#include "privileged/KeychainFixture.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <string>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char *kTool = "/bin/sh"; // any program that exists: none is started
constexpr const char *kSudoLine = "/usr/bin/sudo -S -k /bin/sh mount disk2s1";

class KeychainHelperCommandsTest : public KeychainFixture {
protected:
    void storePassword() { (void)store.add(kPasswordKey, Secret("open sesame")); }

    QCoro::Task<std::string> mount() { return keychain().runPrivileged(kTool, {"mount", "disk2s1"}); }
};

// --- the proof of a password

TEST_F(KeychainHelperCommandsTest, ProvesAPasswordBySudosExitStatus)
{
    sudoAccepts();

    EXPECT_TRUE(resultOf(keychain().validateAdminPassword(Secret("open sesame"))));

    ASSERT_EQ(launcher.commands.size(), 1U);
    EXPECT_EQ(launcher.commands[0].path, "/usr/bin/sudo");
    EXPECT_THAT(launcher.commands[0].arguments, ElementsAre("-S", "-v"));
    EXPECT_FALSE(launcher.commands[0].environment);
    EXPECT_EQ(launcher.commands[0].standardInput, Secret("open sesame\n"));
}

TEST_F(KeychainHelperCommandsTest, TakesAnyOtherStatusAsARefusal)
{
    sudoRefuses();

    EXPECT_FALSE(resultOf(keychain().validateAdminPassword(Secret("wrong"))));
}

TEST_F(KeychainHelperCommandsTest, TakesASudoThatCannotBeStartedAsARefusal)
{
    launcher.answer("/usr/bin/sudo -S -v", {.failure = Error::fromErrno(ENOENT, "/usr/bin/sudo")});

    EXPECT_FALSE(resultOf(keychain().validateAdminPassword(Secret("open sesame"))));
    EXPECT_EQ(clock.pendingTimers(), 0U);
}

TEST_F(KeychainHelperCommandsTest, EndsAProofThatWaitsForeverAfterNinetySeconds)
{
    launcher.hold("/usr/bin/sudo -S -v");
    auto proof = keychain().validateAdminPassword(Secret("open sesame"));

    clock.advance(90s - 1ns);
    const int terminationsBefore = launcher.terminations;
    clock.advance(1ns);

    EXPECT_FALSE(resultOf(std::move(proof)));
    EXPECT_EQ(terminationsBefore, 0);
    EXPECT_EQ(launcher.terminations, 1);
}

// --- commands

TEST_F(KeychainHelperCommandsTest, RunsTheToolThroughSudoWithThePasswordOnItsStandardInput)
{
    storePassword();
    launcher.answer(kSudoLine, {.standardOutput = "Volume EFI on disk2s1 mounted\n"});

    EXPECT_EQ(resultOf(mount()), "Volume EFI on disk2s1 mounted\n");

    ASSERT_EQ(launcher.commands.size(), 1U);
    EXPECT_EQ(launcher.commands[0].path, "/usr/bin/sudo");
    EXPECT_THAT(launcher.commands[0].arguments, ElementsAre("-S", "-k", "/bin/sh", "mount", "disk2s1"));
    EXPECT_FALSE(launcher.commands[0].environment);
    EXPECT_EQ(launcher.commands[0].standardInput, Secret("open sesame\n"));
}

TEST_F(KeychainHelperCommandsTest, HandsAnArgumentWithBlanksOnAsOne)
{
    storePassword();

    (void)errorOf(keychain().runPrivileged(kTool, {"rename", "disk2s1", "My EFI; $(reboot)"}));

    EXPECT_THAT(launcher.commands.at(0).arguments,
                ElementsAre("-S", "-k", "/bin/sh", "rename", "disk2s1", "My EFI; $(reboot)"));
}

TEST_F(KeychainHelperCommandsTest, FailsForAMissingToolBeforeAnyPasswordIsReadOrAskedFor)
{
    const Error error = errorOf(keychain().runPrivileged("/nonexistent/diskutil", {"mount", "disk2s1"}));

    EXPECT_EQ(error.domain(), "KeychainHelper");
    EXPECT_EQ(error.code(), 3);
    EXPECT_EQ(error.localizedDescription(), "Command not found: /nonexistent/diskutil");
    EXPECT_THAT(store.calls, IsEmpty());
    EXPECT_THAT(dialogs.securePrompts, IsEmpty());
    EXPECT_THAT(launcher.commandLines(), IsEmpty());
}

TEST_F(KeychainHelperCommandsTest, StartsNothingWhereNoPasswordIsStoredAndThePromptIsCancelled)
{
    const Error error = errorOf(mount());

    EXPECT_EQ(error.domain(), "KeychainHelper");
    EXPECT_EQ(error.code(), 1);
    EXPECT_EQ(error.localizedDescription(), "Administrator password required");
    EXPECT_EQ(dialogs.securePrompts.size(), 1U);
    EXPECT_THAT(launcher.commandLines(), IsEmpty());
}

TEST_F(KeychainHelperCommandsTest, AsksForAMissingPasswordAndGoesOnWithIt)
{
    sudoAccepts();
    launcher.answer(kSudoLine, {.standardOutput = "mounted"});
    dialogs.secureAnswers = {Secret("open sesame")};

    EXPECT_EQ(resultOf(mount()), "mounted");
    EXPECT_THAT(launcher.commandLines(), ElementsAre("/usr/bin/sudo -S -v", kSudoLine));
    EXPECT_EQ(launcher.commands.back().standardInput, Secret("open sesame\n"));
}

TEST_F(KeychainHelperCommandsTest, KeepsAWrongStoredPasswordAndTellsWhatSudoSaid)
{
    storePassword();
    launcher.answer(kSudoLine, {.terminationStatus = 1, .standardError = "sudo: 1 incorrect password attempt\n"});

    const Error error = errorOf(mount());

    EXPECT_EQ(error.domain(), "SudoError");
    EXPECT_EQ(error.code(), 1);
    EXPECT_EQ(error.localizedDescription(), "sudo: 1 incorrect password attempt\n");
    EXPECT_EQ(store.find(kPasswordKey), Secret("open sesame"));
    EXPECT_THAT(dialogs.securePrompts, IsEmpty());
    EXPECT_EQ(launcher.commands.size(), 1U);
}

TEST_F(KeychainHelperCommandsTest, TellsOfAnUnknownErrorWhereTheErrorTextIsNoUtf8)
{
    storePassword();
    launcher.answer(kSudoLine, {.terminationStatus = 2, .standardError = "\xff"});

    EXPECT_EQ(errorOf(mount()).localizedDescription(), "Unknown error");
}

TEST_F(KeychainHelperCommandsTest, PassesTheSystemsOwnErrorOnWhereSudoCannotBeStarted)
{
    storePassword();
    launcher.answer(kSudoLine, {.failure = Error::fromErrno(ENOENT, "/usr/bin/sudo")});

    const Error error = errorOf(mount());

    EXPECT_EQ(error.domain(), "POSIXError");
    EXPECT_EQ(error.code(), ENOENT);
}

TEST_F(KeychainHelperCommandsTest, GivesTheEmptyTextForAnEmptyOutputAndForOneThatIsNoUtf8)
{
    storePassword();
    launcher.answer(kSudoLine, {});
    EXPECT_EQ(resultOf(mount()), "");

    launcher.answer(kSudoLine, {.standardOutput = "\xff"});
    EXPECT_EQ(resultOf(mount()), "");
}

TEST_F(KeychainHelperCommandsTest, TerminatesAToolThatOutlivesFortyFiveSeconds)
{
    storePassword();
    launcher.hold(kSudoLine);
    auto run = mount();

    clock.advance(45s - 1ns);
    const int terminationsBefore = launcher.terminations;
    clock.advance(1ns);
    const Error error = errorOf(std::move(run));

    EXPECT_EQ(terminationsBefore, 0);
    EXPECT_EQ(launcher.terminations, 1);
    EXPECT_EQ(error.domain(), "SudoError");
    EXPECT_EQ(error.code(), SIGTERM);
}

TEST_F(KeychainHelperCommandsTest, LetsTwoRunsOverlap)
{
    storePassword();
    launcher.hold(kSudoLine);
    launcher.answer("/usr/bin/sudo -S -k /bin/sh unmount disk3s1", {.standardOutput = "unmounted"});
    auto first = mount();

    EXPECT_EQ(resultOf(keychain().runPrivileged(kTool, {"unmount", "disk3s1"})), "unmounted");

    clock.advance(45s);
    EXPECT_EQ(errorOf(std::move(first)).domain(), "SudoError");
}

TEST_F(KeychainHelperCommandsTest, NeverTellsThePassword)
{
    sudoRefuses();
    dialogs.secureAnswers = {Secret("open sesame")};
    const Error refused = errorOf(mount());
    keychain().storePassword(Secret("open sesame"));
    const Error failed = errorOf(mount());

    EXPECT_THAT(log.lines(), Not(Contains(HasSubstr("sesame"))));
    EXPECT_THAT(launcher.commandLines(), Not(Contains(HasSubstr("sesame"))));
    EXPECT_THAT(refused.localizedDescription(), Not(HasSubstr("sesame")));
    EXPECT_THAT(failed.localizedDescription(), Not(HasSubstr("sesame")));
}

// --- as root

class KeychainHelperAsRoot : public KeychainFixture {
protected:
    KeychainHelperAsRoot() : helper(asRoot()) {}

    KeychainHelper::Surroundings asRoot()
    {
        KeychainHelper::Surroundings result = surroundings();
        result.isRoot = true;
        return result;
    }

    KeychainHelper helper;
};

TEST_F(KeychainHelperAsRoot, RunsTheToolDirectlyAndNeedsNoPassword)
{
    launcher.answer("/bin/sh mount disk2s1", {.standardOutput = "mounted"});

    EXPECT_EQ(resultOf(helper.runPrivileged(kTool, {"mount", "disk2s1"})), "mounted");

    EXPECT_EQ(launcher.commands.at(0).standardInput, Secret());
    EXPECT_THAT(store.calls, IsEmpty());
    EXPECT_THAT(dialogs.securePrompts, IsEmpty());
}

TEST_F(KeychainHelperAsRoot, AsksForNoPasswordAtTheStart)
{
    resultOf(helper.promptForMissingPassword());

    EXPECT_THAT(store.calls, IsEmpty());
    EXPECT_THAT(dialogs.securePrompts, IsEmpty());
    EXPECT_THAT(dialogs.alerts, IsEmpty());
    EXPECT_TRUE(defaults.boolForKey(DefaultsKeys::kHasLaunchedBefore));
}

TEST_F(KeychainHelperAsRoot, KeepsTheErrorsAndTheTimeLimit)
{
    const Error missing = errorOf(helper.runPrivileged("/nonexistent/diskutil", {}));
    const Error failed = errorOf(helper.runPrivileged(kTool, {"mount", "disk9s9"}));
    launcher.hold("/bin/sh mount disk2s1");
    auto run = helper.runPrivileged(kTool, {"mount", "disk2s1"});
    clock.advance(45s);
    const Error late = errorOf(std::move(run));

    EXPECT_EQ(missing.localizedDescription(), "Command not found: /nonexistent/diskutil");
    EXPECT_EQ(failed.domain(), "SudoError");
    EXPECT_EQ(failed.code(), 1);
    EXPECT_EQ(late.domain(), "SudoError");
    EXPECT_EQ(late.code(), SIGTERM);
}

} // namespace
} // namespace brindle
