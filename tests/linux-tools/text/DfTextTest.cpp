#include "text/DfText.h"

#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

std::vector<Mount> mounts()
{
    return {
        {.carrier = "disk9s1",
         .mountPoint = "/",
         .space = Space{.totalBytes = 1024 * 487546976ULL,
                        .usedBytes = 1024 * 94835168ULL,
                        .availableBytes = 1024 * 392455808ULL,
                        .usedNodes = 23772790,
                        .freeNodes = 98113952}},
        {.carrier = "disk9s1", .mountPoint = "/srv"},
        {.carrier = "disk10s2",
         .mountPoint = "/mnt/with a blank\nand a line",
         .space = Space{.totalBytes = 2048, .usedBytes = 0, .availableBytes = 2048, .usedNodes = 0, .freeNodes = 0}}};
}

TEST(DfText, PrintsOneLineForEachFileSystemWhoseSpaceIsKnown)
{
    EXPECT_EQ(dfText(mounts(), 1024),
              "Filesystem    1024-blocks     Used Available Capacity    iused    ifree %iused  Mounted on\n"
              "/dev/disk9s1    487546976 94835168 392455808      20% 23772790 98113952    20%  /\n"
              "/dev/disk10s2           2        0         2       0%        0        0     0%  "
              "/mnt/with a blank\xEF\xBF\xBD"
              "and a line\n");
}

TEST(DfText, CountsInTheBlocksThatAreAskedFor)
{
    const std::string text = dfText({mounts().back()}, 512);

    EXPECT_EQ(text, "Filesystem    512-blocks Used Available Capacity iused ifree %iused  Mounted on\n"
                    "/dev/disk10s2          4    0         4       0%     0     0     0%  "
                    "/mnt/with a blank\xEF\xBF\xBD"
                    "and a line\n");
}

TEST(DfText, IsAHeaderAloneWithoutMounts)
{
    EXPECT_EQ(dfText({}, 1024), "Filesystem 1024-blocks Used Available Capacity iused ifree %iused  Mounted on\n");
}

} // namespace
} // namespace brindle::tools
