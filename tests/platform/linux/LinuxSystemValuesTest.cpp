#include "platform/linux/LinuxSystemValues.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace brindle {
namespace {

TEST(OsRelease, GivesTheValueOfAName)
{
    const std::string text = "PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\nNAME=\"Debian GNU/Linux\"\n"
                             "VERSION_ID=\"12\"\nVERSION=\"12 (bookworm)\"\nID=debian\n";

    EXPECT_EQ(osReleaseValue(text, "NAME"), "Debian GNU/Linux");
    EXPECT_EQ(osReleaseValue(text, "VERSION_ID"), "12");
    EXPECT_EQ(osReleaseValue(text, "ID"), "debian");
}

TEST(OsRelease, HasNoValueForWhatIsMissingEmptyOrOnlyPartOfAName)
{
    const std::string text = "VERSION_ID=\nPRETTY_NAME=x\n#NAME=commented\nNAMES=y\n";

    EXPECT_EQ(osReleaseValue(text, "VERSION_ID"), std::nullopt);
    EXPECT_EQ(osReleaseValue(text, "NAME"), std::nullopt);
    EXPECT_EQ(osReleaseValue("", "NAME"), std::nullopt);
}

struct WordCase {
    const char *name;
    const char *word;
    const char *value;
};

class ReadsAWord : public testing::TestWithParam<WordCase> {};

TEST_P(ReadsAWord, AsAShellDoes)
{
    EXPECT_EQ(osReleaseValue(std::string("NAME=") + GetParam().word, "NAME"), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(OsRelease, ReadsAWord,
                         testing::Values(WordCase{"Plain", "Fedora", "Fedora"},
                                         WordCase{"SingleQuotes", R"('a \" b')", R"(a \" b)"},
                                         WordCase{"EscapedQuotes", R"("say \"hi\" \$1 \\")", R"(say "hi" $1 \)"},
                                         WordCase{"OneQuoteAlone", "\"", "\""},
                                         WordCase{"BackslashAtTheEnd", "a\\", "a\\"},
                                         WordCase{"BlanksBehind", "\"a b\"  \r", "a b"}),
                         [](const auto &row) { return row.param.name; });

TEST(OsRelease, TakesTheLastOfSeveralValues)
{
    EXPECT_EQ(osReleaseValue("NAME=first\nNAME=last\n", "NAME"), "last");
}

TEST(LinuxSystemValues, AreThoseOfTheFirstFileThatIsThere)
{
    const QTemporaryDir folder;
    const std::string file = folder.filePath(QStringLiteral("os-release")).toStdString();
    std::ofstream(file) << "NAME=\"Ubuntu\"\nVERSION_ID=\"24.04\"\n";

    const LinuxSystemValues values({folder.path().toStdString() + "/missing", file});

    EXPECT_EQ(values.systemName(), "Ubuntu");
    EXPECT_EQ(values.systemVersion(), "24.04");
}

TEST(LinuxSystemValues, AreLinuxWithoutAVersionWhereTheSystemSaysNothing)
{
    const LinuxSystemValues values({"/nonexistent/os-release"});

    EXPECT_EQ(values.systemName(), "Linux");
    EXPECT_EQ(values.systemVersion(), std::nullopt);
}

} // namespace
} // namespace brindle
