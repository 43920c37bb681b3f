#include "base/NaturalOrder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace brindle {
namespace {

TEST(NaturalOrder, CountsDigitsAsNumbers)
{
    std::vector<std::string> identifiers{"disk10", "disk2", "disk0", "disk11", "disk1"};

    std::sort(identifiers.begin(), identifiers.end(), naturallyLess);

    EXPECT_EQ(identifiers, (std::vector<std::string>{"disk0", "disk1", "disk2", "disk10", "disk11"}));
}

TEST(NaturalOrder, ComparesNumbersThatFitNoInteger)
{
    const std::string small = "disk" + std::string(40, '8');
    const std::string large = "disk" + std::string(40, '9');

    EXPECT_TRUE(naturallyLess(small, large));
    EXPECT_FALSE(naturallyLess(large, small));
}

TEST(NaturalOrder, PutsAPrefixFirst)
{
    EXPECT_TRUE(naturallyLess("disk2", "disk2s1"));
    EXPECT_TRUE(naturallyLess("", "disk0"));
    EXPECT_FALSE(naturallyLess("disk2s1", "disk2"));
}

TEST(NaturalOrder, PassesOverCaseUnlessNothingElseDiffers)
{
    EXPECT_TRUE(naturallyLess("Disk1", "disk2"));
    EXPECT_TRUE(naturallyLess("DISK1", "disk1"));
    EXPECT_FALSE(naturallyLess("disk1", "DISK1"));
}

TEST(NaturalOrder, TellsLeadingZerosApartOnlyAtTheEnd)
{
    EXPECT_TRUE(naturallyLess("disk02", "disk3"));
    EXPECT_TRUE(naturallyLess("disk02", "disk2"));
    EXPECT_FALSE(naturallyLess("disk2", "disk2"));
}

} // namespace
} // namespace brindle
