#include "linux-tools/kernel/FakeKernel.h"

#include "kernel/EfiVariables.h"
#include "text/NvramText.h"

#include <gtest/gtest.h>

#include <fstream>

namespace brindle::tools {
namespace {

using namespace std::string_literals;

class EfiVariables : public testing::Test {
protected:
    void add(const std::string &file, const std::string &bytes)
    {
        std::filesystem::create_directories(m_directory);
        std::ofstream(m_directory / file, std::ios::binary) << bytes;
    }

    [[nodiscard]] std::string valueOf(std::string_view name) const
    {
        const auto variable = readEfiVariable(m_directory, name);
        return variable ? variable->value : "none";
    }

    FakeKernel m_kernel;
    std::filesystem::path m_directory = m_kernel.root() / "efivars";
};

TEST_F(EfiVariables, AreReadWithoutTheirAttributes)
{
    add("opencore-version-4d1fda02-38c7-4a6a-9cc6-4bcca8b30102", "\x06\0\0\0REL-074-2021-09-19"s);

    EXPECT_EQ(valueOf("4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:opencore-version"), "REL-074-2021-09-19");
    EXPECT_EQ(valueOf("4d1fda02-38c7-4a6a-9cc6-4bcca8b30102:opencore-version"), "REL-074-2021-09-19");
}

TEST_F(EfiVariables, AreLookedForUnderThePlatformsGuidFirst)
{
    add("boot-args-7c436110-ab2a-4bbb-a880-fe41995c9f82", "\x07\0\0\0-v"s);
    add("boot-args-4d1fda02-38c7-4a6a-9cc6-4bcca8b30102", "\x07\0\0\0-x"s);
    add("Clover.Version-4d1fda02-38c7-4a6a-9cc6-4bcca8b30102", "\x07\0\0\0r5142"s);

    EXPECT_EQ(valueOf("boot-args"), "-v");
    EXPECT_EQ(valueOf("Clover.Version"), "r5142");
}

TEST_F(EfiVariables, AreNotThere)
{
    EXPECT_EQ(valueOf("boot-args"), "none");
    EXPECT_EQ(valueOf("4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:"), "none");
    EXPECT_EQ(valueOf(""), "none");
}

TEST_F(EfiVariables, AreNeverReadOutsideTheirDirectory)
{
    add("../secret-7c436110-ab2a-4bbb-a880-fe41995c9f82", "\x07\0\0\0secret"s);

    EXPECT_EQ(valueOf("../secret"), "none");
    EXPECT_EQ(valueOf("7C436110-AB2A-4BBB-A880-FE41995C9F82:../secret"), "none");
}

TEST_F(EfiVariables, MayHaveAColonInAPlainName)
{
    add("a:b-7c436110-ab2a-4bbb-a880-fe41995c9f82", "\x07\0\0\0x"s);

    EXPECT_EQ(valueOf("a:b"), "x");
}

TEST_F(EfiVariables, OfLessThanTheirAttributesAreNone)
{
    add("cut-7c436110-ab2a-4bbb-a880-fe41995c9f82", "\x07\0"s);
    add("empty-7c436110-ab2a-4bbb-a880-fe41995c9f82", "\x07\0\0\0"s);

    EXPECT_EQ(valueOf("cut"), "none");
    EXPECT_EQ(valueOf("empty"), "");
}

TEST(NvramText, PrintsTheNameATabAndTheValue)
{
    EXPECT_EQ(nvramText("boot-args", "-v keepsyms=1"), "boot-args\t-v keepsyms=1\n");
}

TEST(NvramText, PrintsOtherBytesAsHexadecimal)
{
    EXPECT_EQ(nvramText("x", "R\0E\n\x7F\xFF%"s), "x\tR%00E%0a%7f%ff%\n");
}

TEST(NvramText, TellsThatAVariableIsMissing)
{
    EXPECT_EQ(nvramMissingText("boot-args"),
              "nvram: Error getting variable - 'boot-args': (iokit/common) data was not found\n");
}

} // namespace
} // namespace brindle::tools
