#include "platform/linux/TreeCopy.h"
#include "platform/linux/TreeRemoval.h"

#include "platform/FileManager.h"
#include "support/CopyFaults.h"
#include "support/FileFaults.h"
#include "support/FileTree.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include <sys/xattr.h>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class TreeCopyFaultsTest : public testing::Test {
protected:
    TreeCopyFaultsTest()
    {
        writeSampleEFI(source());
        fs::create_symlink("BOOT", source() / "link");
        writeFile(source() / "sparse", "x");
        fs::resize_file(source() / "sparse", 1000000);
        m_hasAttributes = ::setxattr((source() / "OC/config.plist").c_str(), "user.brindle", "v", 1, 0) == 0;
    }

    [[nodiscard]] fs::path folder() const { return m_folder.path().toStdString(); }
    [[nodiscard]] fs::path source() const { return folder() / "EFI"; }
    [[nodiscard]] fs::path target() const { return folder() / "copy"; }

    std::optional<Error> copy()
    {
        try {
            TreeCopy(source(), target(), {}).run();
        } catch (const Error &error) {
            return error;
        }
        return std::nullopt;
    }

    [[nodiscard]] bool hasAttributes() const { return m_hasAttributes; }

private:
    // In memory, since each copy is flushed.
    QTemporaryDir m_folder{QStringLiteral("/dev/shm/brindle-XXXXXX")};
    bool m_hasAttributes = false;
};

TEST_F(TreeCopyFaultsTest, FlushesOnceAndLast)
{
    const FileFaults faults;

    ASSERT_FALSE(copy());

    EXPECT_EQ(faults.callsOf("syncfs"), 1);
    const auto calls = faults.calls();
    const auto flush = std::ranges::find(calls, "syncfs", &std::pair<std::string, int>::first);
    EXPECT_TRUE(std::all_of(flush + 1, calls.end(), [](const auto &call) { return call.first == "close"; }));
}

TEST_F(TreeCopyFaultsTest, FailsWhenTheFlushFails)
{
    FileFaults faults;
    faults.fail("syncfs", EIO);

    const auto error = copy();

    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), EIO);
    EXPECT_EQ(error->localizedDescription(), target().string() + ": Input/output error");
}

TEST_F(TreeCopyFaultsTest, CopiesByHandWhereTheKernelCannot)
{
    for (const int errorNumber : {EXDEV, ENOSYS, EOPNOTSUPP, EINVAL}) {
        FileFaults faults;
        faults.fail("copy_file_range", errorNumber);
        fs::remove_all(target());

        ASSERT_FALSE(copy());

        EXPECT_EQ(treeOf(target()), treeOf(source()));
        EXPECT_EQ(faults.callsOf("copy_file_range"), 1) << "asked again between the same file systems";
        EXPECT_GT(faults.callsOf("pwrite"), 0);
    }
}

TEST_F(TreeCopyFaultsTest, LeavesTheBytesToTheKernelWhereItCan)
{
    const FileFaults faults;

    ASSERT_FALSE(copy());

    EXPECT_EQ(treeOf(target()), treeOf(source()));
    EXPECT_EQ(faults.callsOf("pwrite"), 0);
}

TEST_F(TreeCopyFaultsTest, GoesOnAfterASignal)
{
    FileFaults faults;
    faults.fail("copy_file_range", EINTR, 1);
    faults.fail("copy_file_range", EXDEV, 2);
    faults.fail("pread", EINTR, 1);
    faults.fail("pwrite", EINTR, 1);

    ASSERT_FALSE(copy());

    EXPECT_EQ(treeOf(target()), treeOf(source()));
}

TEST_F(TreeCopyFaultsTest, CopiesHolesOfAFileSystemThatDoesNotTellThem)
{
    FileFaults faults;
    faults.fail("lseek", EINVAL);

    ASSERT_FALSE(copy());

    EXPECT_EQ(treeOf(target()), treeOf(source()));
}

struct Quality {
    const char *function;
    int errorNumber;
};

class TreeCopyWithoutTest : public TreeCopyFaultsTest, public testing::WithParamInterface<Quality> {};

INSTANTIATE_TEST_SUITE_P(The, TreeCopyWithoutTest,
                         testing::Values(Quality{"fchmod", EPERM}, Quality{"fchmod", EOPNOTSUPP},
                                         Quality{"fsetxattr", EOPNOTSUPP}, Quality{"fsetxattr", EPERM},
                                         Quality{"flistxattr", EOPNOTSUPP}, Quality{"fgetxattr", ENODATA},
                                         Quality{"futimens", EPERM}, Quality{"utimensat", EIO}),
                         [](const auto &row) {
                             return std::string(row.param.function) + std::to_string(row.param.errorNumber);
                         });

TEST_P(TreeCopyWithoutTest, QualityThatTheTargetLacksIsWhole)
{
    if (std::string_view(GetParam().function).find("etxattr") != std::string_view::npos && !hasAttributes())
        GTEST_SKIP() << "this kernel keeps no attributes of files in memory";
    FileFaults faults;
    faults.fail(GetParam().function, GetParam().errorNumber);

    ASSERT_FALSE(copy());

    EXPECT_GT(faults.callsOf(GetParam().function), 0);
    EXPECT_EQ(treeOf(target()), treeOf(source()));
}

struct Refusal {
    const char *function;
    int errorNumber;
    CopyError code;
};

class TreeCopyRefusedTest : public TreeCopyFaultsTest, public testing::WithParamInterface<Refusal> {};

INSTANTIATE_TEST_SUITE_P(By, TreeCopyRefusedTest,
                         testing::Values(Refusal{"symlinkat", EPERM, CopyError::linkNotHeld},
                                         Refusal{"symlinkat", EOPNOTSUPP, CopyError::linkNotHeld},
                                         Refusal{"symlinkat", EINVAL, CopyError::nameNotHeld},
                                         Refusal{"mkdirat", EINVAL, CopyError::nameNotHeld},
                                         Refusal{"mkdirat", ENAMETOOLONG, CopyError::nameNotHeld}),
                         [](const auto &row) {
                             return std::string(row.param.function) + std::to_string(row.param.errorNumber);
                         });

TEST_P(TreeCopyRefusedTest, SaysWhatTheTargetCannotHold)
{
    FileFaults faults;
    faults.fail(GetParam().function, GetParam().errorNumber);

    const auto error = copy();

    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain(), kCopyErrorDomain);
    EXPECT_EQ(error->code(), static_cast<int>(GetParam().code));
    EXPECT_THAT(error->localizedDescription(), HasSubstr(folder().string()));
}

TEST_F(TreeCopyFaultsTest, TellsAFileThatTheTargetTakesForAnother)
{
    FileFaults faults;
    faults.fail("mkdirat", EEXIST, 2);

    const auto error = copy();

    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), static_cast<int>(CopyError::nameHeldAlready));
}

TEST_F(TreeCopyFaultsTest, EndsWithTheErrorOfWhicheverCallFails)
{
    std::vector<std::pair<std::string, int>> calls;
    {
        const FileFaults faults;
        ASSERT_FALSE(copy());
        calls = faults.calls();
    }
    const auto sourceBefore = treeOf(source());
    int failures = 0;

    for (const auto &[function, which] : calls) {
        for (const int errorNumber : {ENOSPC, EIO, EACCES, EROFS, ENOENT}) {
            fs::remove_all(target());
            FileFaults faults;
            faults.fail(function, errorNumber, which);
            const auto error = copy();
            if (function == "close") // of what was read it tells nothing
                continue;
            const auto context = testing::Message() << function << " number " << which << ", error " << errorNumber;
            if (isTolerated(function, errorNumber)) {
                EXPECT_FALSE(error) << context;
                EXPECT_EQ(treeOf(target()), sourceBefore) << context;
                continue;
            }
            ++failures;
            ASSERT_TRUE(error) << context;
            EXPECT_EQ(error->code(), errorNumber) << context << error->what();
            EXPECT_THAT(error->localizedDescription(), HasSubstr(folder().string())) << context;
        }
    }

    EXPECT_GT(failures, 300);
    EXPECT_EQ(treeOf(source()), sourceBefore);
}

TEST_F(TreeCopyFaultsTest, TellsWhenAFileCouldNotBeClosed)
{
    int failures = 0;
    int closes = 0;
    {
        const FileFaults faults;
        ASSERT_FALSE(copy());
        closes = faults.callsOf("close");
    }

    for (int which = 1; which <= closes; ++which) {
        fs::remove_all(target());
        FileFaults faults;
        faults.fail("close", EIO, which);
        if (const auto error = copy(); error && error->code() == EIO)
            ++failures;
    }

    EXPECT_EQ(failures, 7) << "one for each file that was written";
}

TEST_F(TreeCopyFaultsTest, RemovalEndsWithTheErrorOfWhicheverCallFails)
{
    TreeCopy(source(), target(), {}).run();
    int calls = 0;
    for (const char *function : {"openat", "getdents64", "fstatat", "unlinkat"}) {
        for (int which = 1;; ++which) {
            fs::remove_all(folder() / "removed");
            TreeCopy(source(), folder() / "removed", {}).run();
            FileFaults faults;
            faults.fail(function, EIO, which);
            try {
                removeTree(folder() / "removed");
                break; // no more such calls
            } catch (const Error &error) {
                ++calls;
                EXPECT_EQ(error.code(), EIO);
                EXPECT_THAT(error.localizedDescription(), HasSubstr((folder() / "removed").string()));
            }
        }
    }

    EXPECT_GT(calls, 30);
    EXPECT_EQ(treeOf(target()), treeOf(source()));
}

} // namespace
} // namespace brindle
