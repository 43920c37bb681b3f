#include "cli/TerminalDialogs.h"

#include "assembly/Interruption.h"
#include "base/BlockOn.h"
#include "support/MaskedPassword.h"
#include "support/Patience.h"

#include <QCoreApplication>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace brindle {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

/// Dialogs in a pseudo terminal, in which a test types.
class TerminalDialogsTest : public testing::Test {
protected:
    TerminalDialogsTest()
    {
        EXPECT_EQ(openpty(&m_keyboard, &m_terminal, nullptr, nullptr, nullptr), 0);
        dialogs.emplace(m_terminal);
    }
    ~TerminalDialogsTest() override { close(m_keyboard); }

    /// The answer of \a dialog, in which \a keys are typed once it waits.
    template <typename T>
    T answerTo(QCoro::Task<T> dialog, std::string_view keys)
    {
        type(keys);
        return blockOn(std::move(dialog), kPatience);
    }

    void type(std::string_view keys) const
    {
        EXPECT_EQ(write(m_keyboard, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }

    bool echoes() const
    {
        termios settings{};
        tcgetattr(m_terminal, &settings);
        return (settings.c_lflag & ECHO) != 0;
    }

    /// Whether the next program at the terminal would read something, also of a line that has not ended.
    bool hasInput() const
    {
        termios settings{};
        tcgetattr(m_terminal, &settings);
        settings.c_lflag &= ~static_cast<tcflag_t>(ICANON);
        tcsetattr(m_terminal, TCSANOW, &settings);
        pollfd waiting{.fd = m_terminal, .events = POLLIN, .revents = 0};
        return poll(&waiting, 1, 0) == 1;
    }

    /// What the terminal shows, read until a mark behind it comes: the kernel hands it over when it has the time.
    std::string shown() const
    {
        constexpr std::string_view kMark = "<all of it>";
        EXPECT_EQ(write(m_terminal, kMark.data(), kMark.size()), static_cast<ssize_t>(kMark.size()));
        std::string text;
        std::size_t end = std::string::npos;
        while ((end = text.find(kMark)) == std::string::npos) {
            std::string part(65536, '\0');
            const ssize_t count = read(m_keyboard, part.data(), part.size());
            if (count <= 0) {
                ADD_FAILURE() << "the terminal has gone: " << text;
                return text;
            }
            text.append(part, 0, static_cast<std::size_t>(count));
        }
        return text.erase(end, kMark.size());
    }

    std::optional<TerminalDialogs> dialogs;

private:
    int m_keyboard = -1;
    int m_terminal = -1; ///< The dialogs' own.
};

const Alert kQuestion{.messageText = "Really?", .informativeText = "\x1b[2JIt hurts.", .buttons = {"Yes", "No"}};

TEST_F(TerminalDialogsTest, LeaveNoCopyOfAPasswordInMemory)
{
    {
        Secret typed = maskedPassword();
        typed.append("\n");
        const auto answer = answerTo(dialogs->securePrompt({.placeholder = "Password"}), typed.view());
        EXPECT_EQ(answer, maskedPassword());
    }

    EXPECT_FALSE(isMaskedPasswordInMemory());
    EXPECT_EQ(shown(), "\r\n\r\nPassword: \r\n"); // nothing of it either
}

TEST_F(TerminalDialogsTest, ChooseAButtonByItsNumberAndTheLastOneOtherwise)
{
    EXPECT_EQ(answerTo(dialogs->alert(kQuestion), "1\n"), 0U);
    EXPECT_EQ(answerTo(dialogs->alert(kQuestion), "2\n"), 1U);
    EXPECT_EQ(answerTo(dialogs->alert(kQuestion), "7\n"), 1U);
    EXPECT_EQ(answerTo(dialogs->alert(kQuestion), "\n"), 1U);
    EXPECT_EQ(answerTo(dialogs->alert(kQuestion), "\x03"), 1U);
    EXPECT_THAT(shown(), HasSubstr("Really?\r\n<U+001B>[2JIt hurts.\r\n1) Yes  2) No  Number: "));
}

TEST_F(TerminalDialogsTest, DoNotWaitForTheOnlyButtonOfAnAlert)
{
    EXPECT_EQ(answerTo(dialogs->alert({.messageText = "So it is"}), ""), 0U);
}

TEST_F(TerminalDialogsTest, TakeTheProposalForAnEmptyLine)
{
    const TextPrompt prompt{.placeholder = "New name", .text = "EFI"};

    EXPECT_EQ(answerTo(dialogs->textPrompt(prompt), "BOOT\n"), "BOOT");
    EXPECT_EQ(answerTo(dialogs->textPrompt(prompt), "\n"), "EFI");
    EXPECT_EQ(answerTo(dialogs->textPrompt(prompt), "BOOT\x03"), std::nullopt);
    EXPECT_THAT(shown(), HasSubstr("New name [EFI]: "));
}

TEST_F(TerminalDialogsTest, GiveAnAbsolutePathToSaveTo)
{
    const SavePanel panel{.proposedName = "EFI Backup", .startFolder = "/home/user"};

    EXPECT_EQ(answerTo(dialogs->savePanel(panel), "\n"), "/home/user/EFI Backup");
    EXPECT_EQ(answerTo(dialogs->savePanel(panel), "mine\n"), (std::filesystem::current_path() / "mine").string());
    EXPECT_EQ(answerTo(dialogs->savePanel(panel), "\x04"), std::nullopt);
}

TEST_F(TerminalDialogsTest, ForgetWhatWasTypedBeforeTheyAsk)
{
    answerTo(dialogs->alert({}), "early\n");
    for (std::string echo; echo.find("early") == std::string::npos;)
        echo += shown(); // the line has reached the terminal

    EXPECT_EQ(answerTo(dialogs->textPrompt({}), "late\n"), "late");
}

TEST_F(TerminalDialogsTest, AskOneAfterTheOther)
{
    auto first = dialogs->textPrompt({.alert = {.messageText = "First"}, .placeholder = "Name", .text = "one"});
    auto second = dialogs->securePrompt({.alert = {.messageText = "Second"}, .placeholder = "Password"});
    auto third = dialogs->alert({.messageText = "Third"});
    QCoreApplication::processEvents();
    EXPECT_THAT(shown(), EndsWith("Name [one]: "));

    EXPECT_EQ(answerTo(std::move(first), "\n"), "one");
    QCoreApplication::processEvents();
    EXPECT_THAT(shown(), EndsWith("Second\r\n\r\nPassword: "));

    EXPECT_EQ(answerTo(std::move(second), "secret\n"), Secret("secret"));
    EXPECT_EQ(blockOn(std::move(third), kPatience), 0U);
    EXPECT_THAT(shown(), HasSubstr("Third\r\n"));
}

TEST_F(TerminalDialogsTest, AreAllCancelledWhenTheyAreClosed)
{
    auto open = dialogs->securePrompt({.alert = {.messageText = "Open"}, .placeholder = "Password"});
    auto waiting = dialogs->textPrompt({.alert = {.messageText = "Waiting"}});
    QCoreApplication::processEvents();
    type("half a pass");

    dialogs->close();

    EXPECT_EQ(blockOn(std::move(open), kPatience), std::nullopt);
    EXPECT_EQ(blockOn(std::move(waiting), kPatience), std::nullopt);
    EXPECT_EQ(blockOn(dialogs->alert(kQuestion), kPatience), 1U);
    EXPECT_EQ(shown(), "Open\r\n\r\nPassword: \r\n");
    EXPECT_FALSE(hasInput()) << "the shell would show what was typed of the password";
}

TEST_F(TerminalDialogsTest, AreCancelledByASignalThatTheProgramOutlives)
{
    bool isInterrupted = false;
    const Interruption outlives([&] { isInterrupted = true; }, Interruption::Then::goOn);
    auto prompt = dialogs->securePrompt({.placeholder = "Password"});
    ASSERT_FALSE(echoes());

    ASSERT_EQ(raise(SIGTERM), 0);

    EXPECT_EQ(blockOn(std::move(prompt), kPatience), std::nullopt);
    EXPECT_TRUE(isInterrupted);
    EXPECT_TRUE(echoes());
}

TEST_F(TerminalDialogsTest, AreCancelledAtOnceWithoutATerminal)
{
    TerminalDialogs nobody(-1);

    EXPECT_FALSE(nobody.hasTerminal());
    EXPECT_EQ(blockOn(nobody.alert(kQuestion), kPatience), 1U);
    EXPECT_EQ(blockOn(nobody.securePrompt({}), kPatience), std::nullopt);
    EXPECT_EQ(blockOn(nobody.textPrompt({}), kPatience), std::nullopt);
    EXPECT_EQ(blockOn(nobody.savePanel({}), kPatience), std::nullopt);
}

} // namespace
} // namespace brindle
