#include "base/TemporaryFolder.h"

#include "base/Error.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace brindle {
namespace {

namespace fs = std::filesystem;

/// Temporary files stand in a folder of the test's own.
class TemporaryFolder : public testing::Test {
protected:
    TemporaryFolder() { ::setenv("TMPDIR", parent.c_str(), 1); }
    ~TemporaryFolder() override
    {
        fs::remove_all(parent);
        ::setenv("TMPDIR", usual.c_str(), 1);
    }

    const fs::path usual = fs::temp_directory_path();
    const fs::path parent = makeTemporaryFolder("test");
};

TEST_F(TemporaryFolder, IsNamedByItsPurposeAndDigitsWhichSpellNoWord)
{
    const std::string name = makeTemporaryFolder("demo").filename();

    const std::string stem = "brindle-demo-";
    ASSERT_TRUE(name.starts_with(stem));
    const std::string rest = name.substr(stem.size());
    EXPECT_FALSE(rest.empty());
    EXPECT_TRUE(std::ranges::all_of(rest, [](char character) { return character >= '0' && character <= '9'; })) << rest;
}

TEST_F(TemporaryFolder, IsEmptyAndTheUsersAlone)
{
    const fs::path folder = makeTemporaryFolder("demo");

    EXPECT_TRUE(fs::is_empty(folder));
    EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all);
    EXPECT_EQ(folder.parent_path(), parent);
}

TEST_F(TemporaryFolder, IsAnotherOneEachTime)
{
    EXPECT_NE(makeTemporaryFolder("demo"), makeTemporaryFolder("demo"));
}

TEST_F(TemporaryFolder, LiesInTmpWhereNoFolderIsNamed)
{
    ::setenv("TMPDIR", "", 1);
    const fs::path withEmptyName = makeTemporaryFolder("test");
    ::unsetenv("TMPDIR");
    const fs::path withoutName = makeTemporaryFolder("test");
    fs::remove(withEmptyName);
    fs::remove(withoutName);

    EXPECT_EQ(withEmptyName.parent_path(), "/tmp");
    EXPECT_EQ(withoutName.parent_path(), "/tmp");
}

TEST_F(TemporaryFolder, NamesTheFolderThatIsMissing)
{
    const std::string missing = parent / "gone";
    ::setenv("TMPDIR", missing.c_str(), 1);

    try {
        (void)makeTemporaryFolder("test");
        FAIL() << "a folder was made";
    } catch (const Error &error) {
        EXPECT_EQ(error.localizedDescription(),
                  "No temporary folder can be made in " + missing + ": No such file or directory");
    }
}

TEST_F(TemporaryFolder, FailsWithTheSystemsWords)
{
    EXPECT_THROW((void)makeTemporaryFolder("no-such-folder/demo"), Error);
}

} // namespace
} // namespace brindle
