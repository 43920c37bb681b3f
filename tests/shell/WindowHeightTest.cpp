#include "shell/WindowHeight.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

TEST(WindowHeight, IsThatOfTheContentWhereTheScreenHasRoom)
{
    EXPECT_DOUBLE_EQ(windowHeight(578, 1000), 578);
}

TEST(WindowHeight, IsAtMostNineTenthsOfTheScreen)
{
    EXPECT_DOUBLE_EQ(windowHeight(578, 600), 540);
}

TEST(WindowHeight, IsAtMost900WithoutAScreen)
{
    EXPECT_DOUBLE_EQ(windowHeight(899, std::nullopt), 899);
    EXPECT_DOUBLE_EQ(windowHeight(901, std::nullopt), 900);
}

TEST(WindowHeight, NeverFallsBelow150OnASmallerScreenEither)
{
    EXPECT_DOUBLE_EQ(windowHeight(82, 1000), 150);
    EXPECT_DOUBLE_EQ(windowHeight(578, 100), 150);
}

} // namespace
} // namespace brindle
