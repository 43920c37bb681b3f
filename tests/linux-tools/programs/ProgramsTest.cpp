#include "linux-tools/machine/TestMachine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

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
