#include "platform/CoreImages.h"

#include "support/ChildOfTest.h"

#include <gtest/gtest.h>

#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace brindle {
namespace {

constexpr uid_t kNobody = 65534;

rlimit limitOfImages()
{
    rlimit limit{};
    getrlimit(RLIMIT_CORE, &limit);
    return limit;
}

TEST(LinuxCoreImages, AreLimitedToWhatTheKernelPipesToNoCollector)
{
    const pid_t child = startChild([] {
        forbidCoreImages();

        EXPECT_EQ(limitOfImages().rlim_cur, 1U);
        EXPECT_EQ(limitOfImages().rlim_max, 1U);
        EXPECT_EQ(prctl(PR_GET_DUMPABLE), 1);
    });

    EXPECT_EQ(endOf(child), 0);
}

TEST(LinuxCoreImages, AreNotTakenWhereTheLimitCannotBeRaisedFromNothing)
{
    const pid_t child = startChild([] {
        constexpr rlimit kNothing{.rlim_cur = 0, .rlim_max = 0};
        EXPECT_EQ(setrlimit(RLIMIT_CORE, &kNothing), 0);
        EXPECT_TRUE(geteuid() != 0 || seteuid(kNobody) == 0); // root may raise it
        EXPECT_EQ(prctl(PR_SET_DUMPABLE, 1), 0);

        forbidCoreImages();

        EXPECT_EQ(limitOfImages().rlim_max, 0U);
        EXPECT_EQ(prctl(PR_GET_DUMPABLE), 0);
    });

    EXPECT_EQ(endOf(child), 0);
}

} // namespace
} // namespace brindle
