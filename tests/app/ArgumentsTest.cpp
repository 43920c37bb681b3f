#include "app/Arguments.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

struct ArgumentsCase {
    const char *name;
    std::vector<std::string> given; ///< Behind the program's name.
    Arguments read;
};

class ArgumentsTest : public testing::TestWithParam<ArgumentsCase> {};

INSTANTIATE_TEST_SUITE_P(
    Of, ArgumentsTest,
    testing::Values(ArgumentsCase{"None", {}, {}}, ArgumentsCase{"Help", {"--help"}, {.help = true}},
                    ArgumentsCase{"ShortHelp", {"-h"}, {.help = true}},
                    ArgumentsCase{"Version", {"--version"}, {.version = true}},
                    ArgumentsCase{"Demo", {"--demo"}, {.demo = true}},
                    ArgumentsCase{"DemoThatAsks", {"--demo=ask"}, {.demo = true, .demoAsksForPassword = true}},
                    ArgumentsCase{"DemoOfAnotherKind", {"--demo=no"}, {.unknown = "--demo=no"}},
                    ArgumentsCase{"LaunchMode", {"-launchMode", "window"}, {}},
                    ArgumentsCase{"LaunchModeOfNoMeaning", {"-launchMode", "--help"}, {}},
                    ArgumentsCase{"LaunchModeAsTheLast", {"--demo", "-launchMode"}, {.demo = true}},
                    ArgumentsCase{"BehindALaunchMode", {"-launchMode", "menubar", "--demo"}, {.demo = true}},
                    ArgumentsCase{"TheFirstThatIsUnknown", {"--demo", "-x", "y"}, {.demo = true, .unknown = "-x"}}),
    [](const auto &row) { return row.param.name; });

TEST_P(ArgumentsTest, AreReadAsTheyAreMeant)
{
    std::vector<std::string> all{"--version"}; // a name of the program asks for nothing
    all.insert(all.end(), GetParam().given.begin(), GetParam().given.end());

    const Arguments arguments = readArguments(all);

    EXPECT_EQ(arguments.help, GetParam().read.help);
    EXPECT_EQ(arguments.version, GetParam().read.version);
    EXPECT_EQ(arguments.demo, GetParam().read.demo);
    EXPECT_EQ(arguments.demoAsksForPassword, GetParam().read.demoAsksForPassword);
    EXPECT_EQ(arguments.unknown, GetParam().read.unknown);
}

TEST(Arguments, MayLackEvenTheNameOfTheProgram)
{
    EXPECT_EQ(readArguments({}).unknown, "");
}

} // namespace
} // namespace brindle
