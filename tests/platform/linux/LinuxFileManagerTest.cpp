#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/FileDescriptor.h"

#include "base/BlockOn.h"
#include "support/ChildOfTest.h"
#include "support/FileTree.h"
#include "support/Fixtures.h"
#include "support/Patience.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

struct stat statusOf(const fs::path &file)
{
    struct stat status {};
    EXPECT_EQ(::lstat(file.c_str(), &status), 0) << file;
    return status;
}

/// The same on each pair of file systems: within the disk's, and to and from one in memory, across which the kernel has
/// no short way.
struct FileSystems {
    const char *name;
    const char *from;
    const char *to;
};

class LinuxFileManagerTest : public testing::TestWithParam<FileSystems> {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_source.isValid());
        ASSERT_TRUE(m_target.isValid());
    }

    [[nodiscard]] fs::path source() const { return fs::path(m_source.path().toStdString()) / "EFI"; }
    [[nodiscard]] fs::path target() const { return fs::path(m_target.path().toStdString()) / "copy"; }

    void copy() { blockOn(files.copyItem(source(), target()), kPatience); }

    Error errorOfCopy(CancellationToken token = {})
    {
        try {
            blockOn(files.copyItem(source(), target(), token), kPatience);
        } catch (const Error &error) {
            return error;
        }
        ADD_FAILURE() << "the copy did not fail";
        return {"", 0, ""};
    }

    LinuxFileManager files;

private:
    QTemporaryDir m_source{QString::fromLatin1(GetParam().from) + QStringLiteral("/brindle-XXXXXX")};
    QTemporaryDir m_target{QString::fromLatin1(GetParam().to) + QStringLiteral("/brindle-XXXXXX")};
};

INSTANTIATE_TEST_SUITE_P(On, LinuxFileManagerTest,
                         testing::Values(FileSystems{"OneDisk", "/tmp", "/tmp"},
                                         FileSystems{"DiskToMemory", "/tmp", "/dev/shm"},
                                         FileSystems{"MemoryToDisk", "/dev/shm", "/tmp"}),
                         [](const auto &row) { return row.param.name; });

TEST_P(LinuxFileManagerTest, CopiesAFolderWithAllThatIsBeneathIt)
{
    writeSampleEFI(source());
    fs::create_symlink("../BOOT", source() / "OC/link");
    fs::create_symlink("nowhere", source() / "dangling");

    copy();

    EXPECT_EQ(treeOf(target()), treeOf(source()));
    EXPECT_EQ(treeOf(target()).size(), 14U);
}

TEST_P(LinuxFileManagerTest, CopiesASingleFile)
{
    writeFile(source(), "one");

    copy();

    EXPECT_EQ(contentsOf(target()), "one");
}

TEST_P(LinuxFileManagerTest, KeepsTimesAndPermissions)
{
    writeFile(source() / "BOOT/read-only", "x");
    ::chmod((source() / "BOOT/read-only").c_str(), 0444);
    ::chmod((source() / "BOOT").c_str(), 0750);
    const std::array times{timespec{1000000000, 123456789}, timespec{1100000000, 987654321}};
    for (const char *name : {"BOOT/read-only", "BOOT", "."})
        ASSERT_EQ(::utimensat(AT_FDCWD, (source() / name).c_str(), times.data(), 0), 0);

    copy();

    EXPECT_EQ(statusOf(target() / "BOOT/read-only").st_mode & 07777U, 0444U);
    EXPECT_EQ(statusOf(target() / "BOOT").st_mode & 07777U, 0750U);
    for (const char *name : {"BOOT/read-only", "BOOT", "."}) {
        EXPECT_EQ(statusOf(target() / name).st_mtim.tv_sec, 1100000000) << name;
        EXPECT_EQ(statusOf(target() / name).st_mtim.tv_nsec, 987654321) << name;
    }
}

TEST_P(LinuxFileManagerTest, LeavesOutTheBitsThatLendTheOwnersRights)
{
    writeFile(source(), "x");
    ::chmod(source().c_str(), 06755);

    copy();

    EXPECT_EQ(statusOf(target()).st_mode & 07777U, 0755U);
}

TEST_P(LinuxFileManagerTest, KeepsExtendedAttributes)
{
    writeFile(source() / "file", "x");
    for (const char *name : {"file", "."}) {
        if (::setxattr((source() / name).c_str(), "user.brindle", "value", 5, 0) != 0)
            GTEST_SKIP() << GetParam().from << " has no extended attributes";
    }
    if (::setxattr(target().parent_path().c_str(), "user.brindle", "value", 5, 0) != 0) {
        copy(); // without an error

        EXPECT_EQ(contentsOf(target() / "file"), "x");
        return;
    }

    copy();

    for (const char *name : {"file", "."}) {
        std::array<char, 16> value{};
        EXPECT_EQ(::getxattr((target() / name).c_str(), "user.brindle", value.data(), value.size()), 5) << name;
        EXPECT_STREQ(value.data(), "value");
    }
}

TEST_P(LinuxFileManagerTest, KeepsHoles)
{
    constexpr off_t kSize = 64L * 1024 * 1024;
    writeFile(source(), "begin");
    {
        const FileDescriptor file(::open(source().c_str(), O_WRONLY));
        ASSERT_EQ(::pwrite(file.value(), "middle", 6, kSize / 2), 6);
        ASSERT_EQ(::ftruncate(file.value(), kSize), 0);
    }
    ASSERT_LT(statusOf(source()).st_blocks * 512, kSize / 4);

    copy();

    EXPECT_EQ(statusOf(target()).st_size, kSize);
    EXPECT_LT(statusOf(target()).st_blocks * 512, kSize / 4);
    EXPECT_EQ(contentsOf(target()), contentsOf(source()));
}

TEST_P(LinuxFileManagerTest, CopiesAFileThatIsNothingButAHole)
{
    writeFile(source(), "");
    fs::resize_file(source(), 1000000);

    copy();

    EXPECT_EQ(contentsOf(target()), std::string(1000000, '\0'));
    EXPECT_EQ(statusOf(target()).st_blocks, statusOf(source()).st_blocks);
}

TEST_P(LinuxFileManagerTest, CopiesMoreThanOneCallOfTheKernelTakes)
{
    std::string bytes(40'000'000, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i * 2654435761U >> 13);
    writeFile(source(), bytes);

    copy();

    EXPECT_TRUE(contentsOf(target()) == bytes);
}

TEST_P(LinuxFileManagerTest, RefusesATargetThatExists)
{
    writeFile(source() / "new", "new");
    writeFile(target() / "old", "old");

    const Error error = errorOfCopy();

    EXPECT_EQ(error.domain(), "POSIXError");
    EXPECT_EQ(error.code(), EEXIST);
    EXPECT_EQ(error.localizedDescription(), target().string() + ": File exists");
    EXPECT_EQ(treeOf(target()), (std::map<std::string, std::string>{{"old", "old"}}));
}

TEST_P(LinuxFileManagerTest, RefusesALinkToNothingAsTarget)
{
    writeFile(source(), "new");
    fs::create_symlink(target().parent_path() / "elsewhere", target());

    EXPECT_EQ(errorOfCopy().code(), EEXIST);
    EXPECT_FALSE(fs::exists(target().parent_path() / "elsewhere"));
}

TEST_P(LinuxFileManagerTest, NamesAMissingSource)
{
    const Error error = errorOfCopy();

    EXPECT_EQ(error.code(), ENOENT);
    EXPECT_EQ(error.localizedDescription(), source().string() + ": No such file or directory");
}

TEST_P(LinuxFileManagerTest, NamesWhatIsNeitherFileNorFolderNorLink)
{
    fs::create_directories(source() / "OC");
    ASSERT_EQ(::mkfifo((source() / "OC/pipe").c_str(), 0600), 0);

    const Error error = errorOfCopy();

    EXPECT_EQ(error.domain(), kCopyErrorDomain);
    EXPECT_EQ(error.code(), static_cast<int>(CopyError::notCopyable));
    EXPECT_THAT(error.localizedDescription(), HasSubstr("OC/pipe"));
}

TEST_P(LinuxFileManagerTest, RefusesAFolderAsTargetOfItself)
{
    writeSampleEFI(source());
    const auto before = treeOf(source());
    fs::create_directory_symlink(source(), source().parent_path() / "alias");

    for (const fs::path &inside : {source() / "copy", source() / "OC/copy", source().parent_path() / "alias/copy"}) {
        try {
            blockOn(files.copyItem(source(), inside), kPatience);
            ADD_FAILURE() << inside << " was taken";
        } catch (const Error &error) {
            EXPECT_EQ(error.code(), static_cast<int>(CopyError::intoItself)) << error.what();
        }
    }

    EXPECT_EQ(treeOf(source()), before);
}

TEST_P(LinuxFileManagerTest, CopiesToAFolderBesideWhoseNameBeginsAlike)
{
    writeSampleEFI(source());

    blockOn(files.copyItem(source(), source().string() + "2"), kPatience);

    EXPECT_EQ(treeOf(source().string() + "2"), treeOf(source()));
}

TEST_P(LinuxFileManagerTest, StopsWhenItIsCancelled)
{
    writeSampleEFI(source());
    const auto token = CancellationToken::cancellable();
    token.cancel();

    const Error error = errorOfCopy(token);

    EXPECT_EQ(error.domain(), kCopyErrorDomain);
    EXPECT_EQ(error.code(), static_cast<int>(CopyError::cancelled));
    EXPECT_FALSE(fs::exists(target()));
}

TEST_P(LinuxFileManagerTest, StopsAmidACopyThatIsCancelled)
{
    for (int i = 0; i < 3000; ++i)
        writeFile(source() / std::to_string(i), std::string(10000, 'x'));
    const auto token = CancellationToken::cancellable();
    auto copying = files.copyItem(source(), target(), token);

    token.cancel();

    EXPECT_THROW(blockOn(std::move(copying), kPatience), Error);
    EXPECT_LT(treeOf(target()).size(), 3000U);
}

TEST_P(LinuxFileManagerTest, RemovesAFolderWithAllThatIsBeneathItAndNothingElse)
{
    writeSampleEFI(source());
    writeFile(target() / "kept", "kept");
    fs::create_directory_symlink(target(), source() / "OC/link");

    blockOn(files.removeItem(source().string() + "/"), kPatience);

    EXPECT_FALSE(fs::exists(source()));
    EXPECT_EQ(contentsOf(target() / "kept"), "kept");
}

TEST_P(LinuxFileManagerTest, RemovesALinkAndNotWhatItLeadsTo)
{
    writeFile(target() / "kept", "kept");
    fs::create_directory_symlink(target(), source());

    blockOn(files.removeItem(source()), kPatience);

    EXPECT_FALSE(fs::is_symlink(source()));
    EXPECT_EQ(contentsOf(target() / "kept"), "kept");
}

TEST_P(LinuxFileManagerTest, NamesWhatCannotBeRemoved)
{
    writeFile(source() / "OC/file", "x");
    const WithoutRootsRights asUser(source().parent_path());
    ::chmod((source() / "OC").c_str(), 0555);

    try {
        blockOn(files.removeItem(source()), kPatience);
        ADD_FAILURE() << "it was removed";
    } catch (const Error &error) {
        EXPECT_EQ(error.code(), EACCES);
        EXPECT_EQ(error.localizedDescription(), (source() / "OC/file").string() + ": Permission denied");
    }
    ::chmod((source() / "OC").c_str(), 0755);
}

TEST_P(LinuxFileManagerTest, ListsHiddenEntriesTooAndOneLevelAlone)
{
    writeFile(source() / ".hidden", "");
    writeFile(source() / "OC/config.plist", "");

    EXPECT_THAT(blockOn(files.contentsOfDirectory(source()), kPatience), UnorderedElementsAre(".hidden", "OC"));
}

TEST_P(LinuxFileManagerTest, ListsMoreThanOneCallOfTheKernelGives)
{
    for (int i = 0; i < 3000; ++i)
        writeFile(source() / ("a name of some length " + std::to_string(i)), "");

    EXPECT_EQ(blockOn(files.contentsOfDirectory(source()), kPatience).size(), 3000U);
}

TEST_P(LinuxFileManagerTest, CannotListAFile)
{
    writeFile(source(), "x");

    EXPECT_THROW(blockOn(files.contentsOfDirectory(source()), kPatience), Error);
}

TEST_P(LinuxFileManagerTest, TakesALinkToNothingForNothing)
{
    writeFile(source() / "file", "x");
    fs::create_symlink("nowhere", source() / "link");

    EXPECT_TRUE(blockOn(files.fileExists(source())));
    EXPECT_TRUE(blockOn(files.fileExists(source() / "file")));
    EXPECT_FALSE(blockOn(files.fileExists(source() / "link")));
    EXPECT_FALSE(blockOn(files.fileExists(source() / "nowhere")));
}

} // namespace
} // namespace brindle
