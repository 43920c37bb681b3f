#include "platform/linux/LinuxFileManager.h"

#include "base/BlockOn.h"
#include "support/FileTree.h"
#include "support/Fixtures.h"
#include "support/Patience.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

bool runs(const char *program, const QStringList &arguments)
{
    return QProcess::execute(QString::fromLatin1(program), arguments) == 0;
}

bool kernelKnowsFat()
{
    runs("modprobe", {QStringLiteral("-q"), QStringLiteral("vfat")});
    return contentsOf("/proc/filesystems").find("\tvfat\n") != std::string::npos;
}

/// A FAT file system in an image of 40 MB, mounted while a test runs.
class LinuxFileManagerOnFatTest : public testing::Test {
protected:
    void SetUp() override
    {
        if (::geteuid() != 0)
            GTEST_SKIP() << "only root can mount";
        if (!kernelKnowsFat())
            GTEST_SKIP() << "this kernel has no FAT file system";
        const fs::path image = folder() / "image";
        std::ofstream(image).close();
        fs::resize_file(image, 40'000'000);
        fs::create_directory(fat());
        ASSERT_TRUE(runs("mkfs.vfat", {QString::fromStdString(image)}));
        m_isMounted = runs("mount", {QStringLiteral("-o"), QStringLiteral("loop,utf8"), QString::fromStdString(image),
                                     QString::fromStdString(fat())});
        ASSERT_TRUE(m_isMounted);
    }

    void TearDown() override
    {
        if (m_isMounted)
            EXPECT_TRUE(runs("umount", {QString::fromStdString(fat())}));
    }

    [[nodiscard]] fs::path folder() const { return m_folder.path().toStdString(); }
    [[nodiscard]] fs::path fat() const { return folder() / "fat"; }
    [[nodiscard]] fs::path source() const { return folder() / "EFI"; }
    [[nodiscard]] fs::path target() const { return fat() / "EFI"; }

    void copy(const fs::path &from, const fs::path &to) { blockOn(files.copyItem(from, to), kPatience); }

    Error errorOfCopy()
    {
        try {
            copy(source(), target());
        } catch (const Error &error) {
            return error;
        }
        ADD_FAILURE() << "the copy did not fail";
        return {"", 0, ""};
    }

    LinuxFileManager files;

private:
    QTemporaryDir m_folder;
    bool m_isMounted = false;
};

TEST_F(LinuxFileManagerOnFatTest, CopiesThereAndBack)
{
    writeSampleEFI(source());

    copy(source(), target());
    copy(target(), fat() / "EFI again");
    copy(fat() / "EFI again", folder() / "back");

    EXPECT_EQ(treeOf(folder() / "back"), treeOf(source()));
}

TEST_F(LinuxFileManagerOnFatTest, LeavesOutPermissionsAndAttributesWithoutAnError)
{
    writeFile(source() / "file", "x");
    ::chmod((source() / "file").c_str(), 0640);
    const bool hasAttribute = ::setxattr((source() / "file").c_str(), "user.brindle", "v", 1, 0) == 0;
    ASSERT_TRUE(hasAttribute || errno == EOPNOTSUPP);
    const std::array times{timespec{1000000000, 0}, timespec{1100000000, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, (source() / "file").c_str(), times.data(), 0), 0);

    copy(source(), target());

    struct stat status {};
    ASSERT_EQ(::stat((target() / "file").c_str(), &status), 0);
    EXPECT_EQ(status.st_mtim.tv_sec, 1100000000);
}

TEST_F(LinuxFileManagerOnFatTest, NamesALinkThatItCannotHold)
{
    fs::create_directories(source() / "OC");
    fs::create_symlink("elsewhere", source() / "OC/link");

    const Error error = errorOfCopy();

    EXPECT_EQ(error.code(), static_cast<int>(CopyError::linkNotHeld));
    EXPECT_THAT(error.localizedDescription(), HasSubstr("OC/link"));
}

TEST_F(LinuxFileManagerOnFatTest, NamesTheFileWhoseNameItCannotHold)
{
    writeFile(source() / "OC/a:b", "x");

    const Error error = errorOfCopy();

    EXPECT_EQ(error.code(), static_cast<int>(CopyError::nameNotHeld));
    EXPECT_THAT(error.localizedDescription(), HasSubstr("OC/a:b"));
}

TEST_F(LinuxFileManagerOnFatTest, NamesTheFileThatDiffersFromAnotherInCaseAlone)
{
    writeFile(source() / "OC/name", "x");
    writeFile(source() / "OC/NAME", "x");

    const Error error = errorOfCopy();

    EXPECT_EQ(error.code(), static_cast<int>(CopyError::nameHeldAlready));
    EXPECT_THAT(error.localizedDescription(), testing::ContainsRegex("OC/(name|NAME)"));
}

TEST_F(LinuxFileManagerOnFatTest, SaysWhenItIsFull)
{
    writeFile(source() / "OC/big", std::string(50'000'000, 'x'));

    const Error error = errorOfCopy();

    EXPECT_EQ(error.code(), ENOSPC);
    EXPECT_THAT(error.localizedDescription(), HasSubstr("OC/big"));
}

} // namespace
} // namespace brindle
