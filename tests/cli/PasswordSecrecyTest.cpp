// The password goes from standard input to sudo and nowhere else, as seen from outside.

#include "cli/ActingFixture.h"
#include "cli/PasswordTrace.h"

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class PasswordSecrecy : public ActingFixture {};

TEST_F(PasswordSecrecy, ShowsThePasswordInNoCommandLineEnvironmentLogOrFile)
{
    putBefore("usr/bin/sudo",
              "cat /proc/$PPID/cmdline /proc/$PPID/environ /proc/$$/cmdline /proc/$$/environ >> \"$HOME/seen\"");

    const Outcome mount = runWithPassword({"mount", "disk2s1", "--verbose"});

    EXPECT_EQ(mount.status, 0) << mount.error;
    EXPECT_THAT(mount.output + mount.error, Not(HasSubstr(kAdminPassword)));
    EXPECT_THAT(contentsOf(home() + "/seen"), HasSubstr("--password-stdin"));
    EXPECT_THAT(filesWithRunOf(kAdminPassword, folder()), ElementsAre(root() + "/machine.json")); // which has to
}

TEST_F(PasswordSecrecy, WritesThePasswordOnceAndToSudosPipe)
{
    if (const std::string obstacle = PasswordTrace::obstacle(); !obstacle.empty())
        GTEST_SKIP() << obstacle;
    const PasswordTrace trace(home() + "/calls");
    std::vector<std::string> command = trace.command();
    command.insert(command.end(), {BRINDLECTL, "mount", "disk2s1", "--password-stdin"});

    const Outcome mount = runProgram(command.front(), {command.begin() + 1, command.end()},
                                     std::string(kAdminPassword) + "\n", environment());

    ASSERT_EQ(mount.status, 0) << mount.error;
    std::vector<std::string> calls = trace.callsWithRunOf(kAdminPassword);
    const auto isOfMachineFile = [](const std::string &call) {
        return call.find("\\\"password\\\"") != std::string::npos; // its own tools read that
    };
    std::erase_if(calls, isOfMachineFile);
    ASSERT_EQ(calls.size(), 1U) << testing::PrintToString(calls);
    EXPECT_THAT(calls[0], testing::ContainsRegex(R"(write\([0-9]+<pipe:\[[0-9]+\]>, "Gr4n-dM0ther-Sky\\n", 17)"));
}

} // namespace
} // namespace brindle
