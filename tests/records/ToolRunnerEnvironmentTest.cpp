#include "records/ToolRunnerFixture.h"

#include "support/Patience.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace brindle {
namespace {

using testing::HasSubstr;

using Environment = std::map<std::string, std::string>;

/// A variable of this process that children inherit.
struct InheritedVariable {
    static constexpr const char *kName = "BRINDLE_TEST_VARIABLE";

    InheritedVariable() { setenv(kName, "inherited", 1); }
    InheritedVariable(const InheritedVariable &) = delete;
    InheritedVariable &operator=(const InheritedVariable &) = delete;
    ~InheritedVariable() { unsetenv(kName); }
};

TEST(ToolRunner, ReplacesAnInheritedVariableByAGivenEntryOfItsName)
{
    const InheritedVariable variable;
    RealTools tools;

    const std::string output = outputOf(tools.printVariable(variable.kName, Environment{{variable.kName, "given"}}));

    EXPECT_EQ(output, "given\n");
}

TEST(ToolRunner, KeepsTheInheritedVariablesBesideAGivenEntry)
{
    const InheritedVariable variable;
    RealTools tools;

    const std::string inherited = outputOf(tools.printVariable(variable.kName, Environment{{"LC_ALL", "C"}}));
    const std::string given = outputOf(tools.printVariable("LC_ALL", Environment{{"LC_ALL", "C"}}));

    EXPECT_EQ(inherited, "inherited\n");
    EXPECT_EQ(given, "C\n");
}

TEST(ToolRunner, SetsAnUnchangedCopyOfItsOwnEnvironmentForAnEmptyOne)
{
    const InheritedVariable variable;
    RealTools tools;

    const std::string inherited = outputOf(tools.shell("env | sort"));
    const std::string copied = outputOf(tools.runner.run("/bin/sh", {"-c", "env | sort"}, Environment{}));

    ASSERT_TRUE(tools.launcher.lastCommand.environment);
    EXPECT_THAT(copied, HasSubstr("BRINDLE_TEST_VARIABLE=inherited\n"));
    EXPECT_EQ(copied, inherited);
}

TEST(ToolRunner, GivesTheOutputWhereAnyIsAskedForAndNoneOfAToolThatFails)
{
    const InheritedVariable variable;
    RealTools tools;
    const auto shell = [&](const std::string &script) {
        return tools.runner.outputIfAny("/bin/sh", {"-c", script}, Environment{{variable.kName, "given"}});
    };

    EXPECT_EQ(blockOn(shell("echo $BRINDLE_TEST_VARIABLE"), kPatience), "given\n");
    EXPECT_EQ(blockOn(shell("echo out; exit 1"), kPatience), std::nullopt);
    EXPECT_EQ(blockOn(tools.runner.outputIfAny("/nowhere/tool", {}), kPatience), std::nullopt);
}

TEST(ToolRunner, LeavesTheEnvironmentUntouchedWhereNoneIsGiven)
{
    const InheritedVariable variable;
    RealTools tools;

    const std::string output = outputOf(tools.printVariable(variable.kName, std::nullopt));

    EXPECT_FALSE(tools.launcher.lastCommand.environment);
    EXPECT_EQ(output, "inherited\n");
}

} // namespace
} // namespace brindle
