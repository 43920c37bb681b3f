// What brindlectl says of itself, and of a command line that it can't understand.

#include "cli/BrindlectlFixture.h"

#include <gmock/gmock.h>

#include <sstream>
#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char *kAdvice = "Run with --help for more information.\n";

struct UsageCase {
    const char *name;
    std::vector<std::string> arguments;
    const char *complaint;
};

class Usage : public Brindlectl {
protected:
    /// The headings of the program's help, and what stands first beneath each.
    std::vector<std::string> firstWords()
    {
        std::istringstream help(run({"--help"}).output);
        std::vector<std::string> words;
        for (std::string line; std::getline(help, line);) {
            if (line.starts_with("Commands"))
                words.push_back(line);
            else if (!words.empty() && line.starts_with("  "))
                words.push_back(line.substr(2, line.find(' ', 2) - 2));
        }
        return words;
    }
};

class WrongUsage : public Usage, public testing::WithParamInterface<UsageCase> {};

INSTANTIATE_TEST_SUITE_P(
    Of, WrongUsage,
    testing::Values(
        UsageCase{"NoCommand", {}, "A command is required"},
        UsageCase{"NoCommandButAnOption", {"--verbose"}, "A command is required"},
        UsageCase{"AnUnknownCommand", {"foo"}, "There is no command \"foo\""},
        UsageCase{"AnUnknownCommandBehindAnOption", {"--demo", "foo", "disk0"}, "There is no command \"foo\""},
        UsageCase{"AnUnknownCommandBehindAnUnknownOption", {"--yaml", "foo"}, "There is no command \"foo\""},
        UsageCase{"AnUnknownCommandThatATerminalWouldObey", {"f\x1b[2J"}, "There is no command \"f<U+001B>[2J\""},
        UsageCase{"ACommandWithoutItsOwn", {"settings"}, "A command is required"},
        UsageCase{"ACommandWithAnUnknownOne", {"settings", "foo"}, "There is no command \"settings foo\""},
        UsageCase{"AMissingArgument", {"info"}, "DISK is required"},
        UsageCase{"AMissingShell", {"completion"}, "SHELL is required"},
        UsageCase{"AnUnknownShell", {"completion", "tcsh"}, "SHELL: tcsh not in {bash,zsh,fish}"},
        UsageCase{"AnUnknownOption", {"list", "--yaml"}, "The following argument was not expected: --yaml"}),
    [](const auto &row) { return row.param.name; });

TEST_P(WrongUsage, IsToldAsAnErrorAndEndsWithTwo)
{
    const Outcome wrong = run(GetParam().arguments);

    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.error, std::string("brindlectl: ") + GetParam().complaint + '\n' + kAdvice);
    EXPECT_THAT(wrong.output, IsEmpty());
}

TEST_F(Usage, GroupsTheCommandsByWhatTheyAreFor)
{
    EXPECT_THAT(firstWords(),
                ElementsAre("Commands that tell:", "list", "info", "rows", "watch", "system", "settings", "icon-state",
                            "height", "completion", "Commands that act:", "mount", "unmount", "rename", "eject", "copy",
                            "save", "verify", "erase-efi", "erase-volume", "erase-disk", "automount", "password"));
    EXPECT_THAT(run({"settings", "--help"}).output, HasSubstr("\nCommands:\n  list "));
}

TEST_F(Usage, NamesArgumentsInCapitals)
{
    const std::string help = run({"completion", "--help"}).output;

    EXPECT_THAT(help, HasSubstr("Usage: brindlectl completion [OPTIONS] SHELL\n"));
    EXPECT_THAT(help, HasSubstr("\n  SHELL {bash,zsh,fish} REQUIRED\n"));
    EXPECT_THAT(run({"--help"}).output, HasSubstr("Usage: brindlectl [OPTIONS] COMMAND\n"));
    EXPECT_THAT(run({"height", "--help"}).output, HasSubstr("\n  --expand DISK,...  "));
}

TEST_F(Usage, SaysOfWhatTheDesktopTells)
{
    EXPECT_THAT(run({"mount", "--help"}).output,
                AllOf(HasSubstr("Tell how it ended by the desktop's notifications too"),
                      HasSubstr("Show the folder of what was mounted, unless")));
    EXPECT_THAT(run({"watch", "--help"}).output,
                AllOf(HasSubstr("Tell how each mount ended by the desktop's notifications too"),
                      HasSubstr("Show the folder of each partition that was mounted, unless")));
}

} // namespace
} // namespace brindle
