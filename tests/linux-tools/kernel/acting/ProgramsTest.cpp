#include "kernel/acting/Programs.h"

#include "acting/Actor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace brindle::tools {
namespace {

using testing::HasSubstr;

std::string failureOf(const std::function<void()> &call)
{
    try {
        call();
    } catch (const ActionError &error) {
        return error.what();
    }
    return "none";
}

TEST(Programs, NamesThePackageOfAMissingOne)
{
    const Programs programs({"/nowhere"});

    EXPECT_EQ(failureOf([&] {
                  (void)programs.require({"mkfs.hfsplus", "hfsprogs"});
              }),
              "The program mkfs.hfsplus is missing: install the package hfsprogs");
}

TEST(Programs, TellsTheLastLineOfOneThatFailed)
{
    const Programs programs;

    EXPECT_EQ(failureOf([&] {
                  programs.run("/bin/sh", {"-c", "echo first; echo second >&2; exit 3"});
              }),
              "sh failed with status 3: second");
    EXPECT_EQ(failureOf([&] { programs.run("/bin/sh", {"-c", "kill -9 $$"}); }), "sh was ended by signal 9");
}

TEST(Programs, HandsOnNothingOfItsEnvironment)
{
    const Programs programs;
    ::setenv("SECRET", "x", 1);

    EXPECT_EQ(failureOf([&] {
                  programs.run("/bin/sh", {"-c", "test -z \"$SECRET\" && test \"$LC_ALL\" = C.UTF-8"});
              }),
              "none");
}

TEST(Programs, GivesNoInput)
{
    EXPECT_EQ(failureOf([] { Programs().run("/bin/sh", {"-c", "! read line"}); }), "none");
}

} // namespace
} // namespace brindle::tools
