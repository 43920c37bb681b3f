#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/Sha256.h"

#include "base/BlockOn.h"
#include "base/Error.h"
#include "support/FileTree.h"
#include "support/LogCapture.h"
#include "support/Patience.h"

#include <QTemporaryDir>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include <linux/magic.h>
#include <sys/vfs.h>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using Kind = TreeDifference::Kind;

class TreeComparerTest : public testing::Test {
protected:
    TreeComparerTest()
    {
        writeSampleEFI(first());
        writeSampleEFI(second());
    }

    [[nodiscard]] fs::path first() const { return fs::path(m_folder.path().toStdString()) / "first"; }
    [[nodiscard]] fs::path second() const { return fs::path(m_folder.path().toStdString()) / "second"; }

    [[nodiscard]] TreeComparison compare() { return blockOn(files.compareItems(first(), second()), kPatience); }

    LinuxFileManager files{TREE_COMPARER_MODULE};

private:
    QTemporaryDir m_folder{QStringLiteral("/var/tmp/brindle-XXXXXX")}; // on a device, which is read
};

std::string hexOf(const Sha256::Digest &digest)
{
    std::string hex;
    for (const unsigned char byte : digest)
        hex += fmt::format("{:02x}", byte);
    return hex;
}

// The examples of FIPS 180-4 that NIST publishes.
TEST(Sha256, DigestsOneTextAfterTheOther)
{
    Sha256 sha256;

    sha256.add("a");
    sha256.add("bc");
    EXPECT_EQ(hexOf(sha256.finish()), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(hexOf(sha256.finish()), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST_F(TreeComparerTest, FindsNoDifferenceInACopy)
{
    const TreeComparison comparison = compare();

    EXPECT_THAT(comparison.differences, IsEmpty());
    EXPECT_EQ(comparison.fileCount, 6U);
    EXPECT_EQ(comparison.bytesCompared, 7000U + 9000 + 1 + 8 + 6 + 4);
}

TEST_F(TreeComparerTest, TellsEachKindOfDifferenceByName)
{
    fs::remove_all(second() / "OC/Drivers");
    writeFile(second() / "OC/extra", "x");
    writeFile(second() / "OC/OpenCore.efi", std::string(9001, 'o'));
    writeFile(second() / "OC/config.plist", "<plisT/>");
    fs::remove(second() / "OC/Tools");
    writeFile(second() / "OC/Tools", "a file");
    fs::create_symlink("BOOT", first() / "link");
    fs::create_symlink("OC", second() / "link");

    EXPECT_THAT(compare().differences,
                ElementsAre(TreeDifference{Kind::onlyInFirst, "OC/Drivers"},
                            TreeDifference{Kind::size, "OC/OpenCore.efi"}, TreeDifference{Kind::kind, "OC/Tools"},
                            TreeDifference{Kind::content, "OC/config.plist"},
                            TreeDifference{Kind::onlyInSecond, "OC/extra"}, TreeDifference{Kind::link, "link"}));
}

TEST_F(TreeComparerTest, SeesOneBitDeepInsideALargeFile)
{
    std::string bytes(5'000'000, 'x');
    writeFile(first() / "OC/Kexts/large", bytes);
    bytes[3'456'789] ^= 1;
    writeFile(second() / "OC/Kexts/large", bytes);

    EXPECT_THAT(compare().differences, ElementsAre(TreeDifference{Kind::content, "OC/Kexts/large"}));
}

TEST_F(TreeComparerTest, SeesTheOneOfManyFilesThatDiffers)
{
    for (int file = 0; file < 200; ++file) {
        writeFile(first() / fmt::format("many/{}", file), fmt::format("file {}", file));
        writeFile(second() / fmt::format("many/{}", file), file == 123 ? "file 321" : fmt::format("file {}", file));
    }

    const TreeComparison comparison = compare();

    EXPECT_THAT(comparison.differences, ElementsAre(TreeDifference{Kind::content, "many/123"}));
    EXPECT_EQ(comparison.fileCount, 206U);
}

TEST_F(TreeComparerTest, TellsNamesApartByCase)
{
    fs::rename(second() / "OC/Drivers", second() / "OC/drivers");

    EXPECT_THAT(compare().differences, ElementsAre(TreeDifference{Kind::onlyInFirst, "OC/Drivers"},
                                                   TreeDifference{Kind::onlyInSecond, "OC/drivers"}));
}

TEST_F(TreeComparerTest, FailsWhereAFolderIsMissing)
{
    fs::remove_all(second());

    try {
        (void)compare();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Error &error) {
        EXPECT_EQ(error.code(), ENOENT);
        EXPECT_EQ(error.localizedDescription(), second().string() + ": No such file or directory");
    }
}

TEST_F(TreeComparerTest, ReadsTheSecondFolderFromItsDeviceAlthoughItLiesInMemory)
{
    const std::string bytes(4'000'000, 'x');
    writeFile(first() / "large", bytes);
    writeFile(second() / "large", bytes);
    struct statfs fileSystem {};
    ASSERT_EQ(::statfs(second().c_str(), &fileSystem), 0);
    if (fileSystem.f_type == TMPFS_MAGIC)
        GTEST_SKIP() << "these files have no device";

    const TreeComparison comparison = compare();

    EXPECT_GE(comparison.bytesFromDevice, bytes.size());
}

TEST_F(TreeComparerTest, IsNotThereWithoutItsModule)
{
    LogCapture log;
    LinuxFileManager withoutModule("/nonexistent/module.so");

    try {
        (void)blockOn(withoutModule.compareItems(first(), second()), kPatience);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Error &error) {
        EXPECT_EQ(error.localizedDescription(), "Folders can't be compared: a module of the program can't be loaded.");
    }
    EXPECT_THAT(log.lines(),
                ElementsAre(StartsWith("⚠️ The module for comparing folders can't be loaded: /nonexistent")));
}

} // namespace
} // namespace brindle
