#include "records/ToolPaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;

std::vector<std::string> allOf(const ToolPaths &paths)
{
    return {paths.diskutil(), paths.df(), paths.nvram(), paths.systemProfiler(), paths.sudo(), paths.open()};
}

TEST(ToolPaths, AreTheUsualOnesOfTheSystem)
{
    EXPECT_THAT(allOf(ToolPaths::system()), ElementsAre("/usr/sbin/diskutil", "/bin/df", "/usr/sbin/nvram",
                                                        "/usr/sbin/system_profiler", "/usr/bin/sudo", "/usr/bin/open"));
}

TEST(ToolPaths, AllStandUnderAGivenRootSudoIncluded)
{
    EXPECT_THAT(allOf(ToolPaths::underRoot("/srv/machine")),
                ElementsAre("/srv/machine/usr/sbin/diskutil", "/srv/machine/bin/df", "/srv/machine/usr/sbin/nvram",
                            "/srv/machine/usr/sbin/system_profiler", "/srv/machine/usr/bin/sudo",
                            "/srv/machine/usr/bin/open"));
}

TEST(ToolPaths, ReachNoToolOfTheSystemButSudoAndOpenWhereToolsAreSupplied)
{
    EXPECT_THAT(allOf(ToolPaths::withSuppliedTools("/opt/libexec/brindle")),
                ElementsAre("/opt/libexec/brindle/usr/sbin/diskutil", "/opt/libexec/brindle/bin/df",
                            "/opt/libexec/brindle/usr/sbin/nvram", "/opt/libexec/brindle/usr/sbin/system_profiler",
                            "/usr/bin/sudo", "/usr/bin/open"));
}

TEST(ToolPaths, DoNotDoubleTheSlashThatEndsTheFolder)
{
    EXPECT_EQ(ToolPaths::underRoot("/srv/machine//").df(), "/srv/machine/bin/df");
    EXPECT_EQ(ToolPaths::underRoot("/").df(), "/bin/df");
}

} // namespace
} // namespace brindle
