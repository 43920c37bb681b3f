#include "linux-tools/machine/TestMachine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>

namespace brindle::tools {
namespace {

using testing::HasSubstr;

struct ProgramCase {
    const char *name;
    const char *program;
};

class FailsAloud : public testing::TestWithParam<ProgramCase> {};

TEST_P(FailsAloud, WhereItsOutputCannotBeWritten)
{
    const Outcome outcome = runProgram({"/bin/sh", "-c", std::string(GetParam().program) + " --help >/dev/full"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, std::string(GetParam().name) + ": standard output: No space left on device\n");
}

INSTANTIATE_TEST_SUITE_P(Programs, FailsAloud,
                         testing::Values(ProgramCase{"df", DF_TOOL}, ProgramCase{"diskutil", DISKUTIL_TOOL},
                                         ProgramCase{"nvram", NVRAM_TOOL},
                                         ProgramCase{"system_profiler", SYSTEM_PROFILER_TOOL}),
                         [](const auto &info) { return info.param.name; });

TEST(Diskutil, HasAPageThatShowsEachOfItsVerbs)
{
    std::ifstream file(DISKUTIL_PAGE);
    const std::string page(std::istreambuf_iterator<char>(file), {});
    std::istringstream help(runProgram({DISKUTIL_TOOL, "--help"}).output);

    int verbs = 0;
    for (std::string line; std::getline(help, line);) {
        constexpr std::string_view kBeforeAVerb = "   ";
        if (!line.starts_with(kBeforeAVerb) || line[kBeforeAVerb.size()] == ' ')
            continue;
        const std::string verb =
            line.substr(kBeforeAVerb.size(), line.find(' ', kBeforeAVerb.size()) - kBeforeAVerb.size());
        EXPECT_THAT(page, HasSubstr("\n.B diskutil " + verb + "\n"));
        ++verbs;
    }

    EXPECT_GE(verbs, 8);
}

TEST(Df, TellsTheOtherVolumesWhereAMountPointLeadsToItself)
{
    const TestMachine machine;
    machine.install("bin/df", DF_TOOL);
    std::filesystem::create_directories(machine.root() / "Volumes");
    std::filesystem::create_symlink("DATA", machine.root() / "Volumes/DATA");

    const Outcome outcome = runProgram({machine.root() / "bin/df", "-k"});

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(outcome.output, HasSubstr("/dev/disk2s2"));
    EXPECT_THAT(outcome.output, HasSubstr("/dev/disk1s1"));
}

} // namespace
} // namespace brindle::tools
