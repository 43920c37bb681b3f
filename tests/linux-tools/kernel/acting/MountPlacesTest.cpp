#include "ActingKernel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace brindle::tools {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

/// Where the EFI partition of the stick is mounted.
class MountPlaces : public testing::Test {
protected:
    MountPlaces()
    {
        kernel.plugStick();
        fs::create_directories(kernel.media() / "ann");
    }

    std::string mountEfi()
    {
        const Outcome outcome = kernel.run({"mount", "disk7s1"});
        if (outcome.status != 0)
            return outcome.errors;
        return fs::path(kernel.mounted.back().target).filename();
    }

    ActingKernel kernel;
};

TEST_F(MountPlaces, UseAFolderAgainThatAnEarlierMountLeft)
{
    fs::create_directory(kernel.media() / "ann/EFI");

    EXPECT_EQ(mountEfi(), "EFI");
}

TEST_F(MountPlaces, NeverUseAFolderWithFiles)
{
    fs::create_directory(kernel.media() / "ann/EFI");
    std::ofstream(kernel.media() / "ann/EFI/file") << "x";

    EXPECT_EQ(mountEfi(), "EFI 1");
}

TEST_F(MountPlaces, NeverFollowALink)
{
    fs::create_directory(kernel.media() / "elsewhere");
    fs::create_directory_symlink(kernel.media() / "elsewhere", kernel.media() / "ann/EFI");

    EXPECT_EQ(mountEfi(), "EFI 1");
}

TEST_F(MountPlaces, NeverMountOverAnotherVolume)
{
    kernel.addMount("8:18", kernel.media() / "ann/EFI");
    fs::create_directory(kernel.media() / "ann/EFI");

    EXPECT_EQ(mountEfi(), "EFI 1");
}

/// Ends a mount when all was read, as an erase does before it mounts the new volume.
class KernelThatUnmounts : public ActingKernel {
public:
    bool isPrivileged() override
    {
        (void)unmount(ended);
        return ActingKernel::isPrivileged();
    }

    std::string ended;
};

TEST(MountPlacesOfAnErase, AreThoseOfTheMountThatItHasEnded)
{
    KernelThatUnmounts kernel;
    kernel.plugStick();
    kernel.ended = kernel.media() / "ann/EFI";
    fs::create_directories(kernel.ended);
    kernel.addMount("8:18", kernel.ended);

    const Outcome outcome = kernel.run({"mount", "disk7s1"});

    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(kernel.mountPoints(), ElementsAre(kernel.ended));
}

TEST_F(MountPlaces, EndTheMountOfADiskThatWasPulledOut)
{
    kernel.addMount("8:99", kernel.media() / "ann/EFI");
    fs::create_directory(kernel.media() / "ann/EFI");

    EXPECT_EQ(mountEfi(), "EFI");

    EXPECT_THAT(kernel.detached, ElementsAre(kernel.media() / "ann/EFI"));
}

TEST_F(MountPlaces, RefuseAHomeThatOthersMayWriteTo)
{
    fs::permissions(kernel.media() / "ann", fs::perms::all);

    EXPECT_THAT(mountEfi(), HasSubstr("must be a folder that only its owner"));
    EXPECT_THAT(kernel.mounted, IsEmpty());
}

TEST_F(MountPlaces, RefuseAHomeThatIsALink)
{
    fs::remove(kernel.media() / "ann");
    fs::create_directory(kernel.media() / "elsewhere");
    fs::create_directory_symlink(kernel.media() / "elsewhere", kernel.media() / "ann");

    EXPECT_THAT(mountEfi(), HasSubstr("must be a folder that only its owner"));
}

TEST_F(MountPlaces, KeepALabelWithinItsFolder)
{
    kernel.addPartition("sdb", 19, 3, kDataGuid, {"ID_FS_TYPE=ext4", "ID_FS_LABEL_ENC=..\\x2f..\\x2fetc"});

    ASSERT_EQ(kernel.run({"mount", "disk7s3"}).status, 0);

    EXPECT_EQ(kernel.mounted.back().target, kernel.media() / "ann/.._.._etc");
    EXPECT_EQ(kernel.mounted.back().options, "");
}

} // namespace
} // namespace brindle::tools
