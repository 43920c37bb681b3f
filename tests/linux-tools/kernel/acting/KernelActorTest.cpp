#include "ActingKernel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>

namespace brindle::tools {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

TEST(KernelActor, MountsForTheCallingUserAlone)
{
    ActingKernel kernel;
    kernel.plugStick();

    const Outcome outcome = kernel.run({"mount", "disk7s1"});

    EXPECT_EQ(outcome.output, "Volume EFI on disk7s1 mounted\n") << outcome.errors;
    ASSERT_EQ(kernel.mounted.size(), 1);
    EXPECT_EQ(kernel.mounted[0].target, kernel.media() / "ann/EFI");
    EXPECT_EQ(kernel.mounted[0].fileSystem, "vfat");
    EXPECT_EQ(kernel.mounted[0].options, "uid=1000,gid=1001,umask=077");
    EXPECT_FALSE(kernel.mounted[0].isReadOnly);
}

TEST(KernelActor, MountsAWriteProtectedDiskForReading)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.files().setAttribute("pci0000:00/0000:00:14.0/usb1/1-1/1-1:1.0/host2/target2:0:0/sdb/block/sdb", "ro", "1");

    EXPECT_EQ(kernel.run({"mount", "disk7s1"}).status, 0);

    EXPECT_TRUE(kernel.mounted.at(0).isReadOnly);
}

TEST(KernelActor, LeavesAMountedVolumeAsItIsAndNeedsNoRightsForThat)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.addMount("8:17", "/boot/efi");
    kernel.isRoot = false;

    const Outcome outcome = kernel.run({"mount", "disk7s1"});

    EXPECT_EQ(outcome.output, "Volume EFI on disk7s1 mounted\n") << outcome.errors;
    EXPECT_THAT(kernel.mounted, IsEmpty());
}

struct FailureCase {
    const char *name;
    bool isRoot;
    int error;
    const char *reason;
};

class SaysWhyAMountFailed : public testing::TestWithParam<FailureCase> {};

TEST_P(SaysWhyAMountFailed, AndLeavesNoFolder)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.isRoot = GetParam().isRoot;
    kernel.mountError = GetParam().error;

    const Outcome outcome = kernel.run({"mount", "disk7s1"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr(std::string("Volume on disk7s1 failed to mount\n") + GetParam().reason));
    EXPECT_FALSE(fs::exists(kernel.media() / "ann/EFI"));
}

INSTANTIATE_TEST_SUITE_P(
    KernelActor, SaysWhyAMountFailed,
    testing::Values(FailureCase{"WithoutRights", false, 0, "Perhaps the operation is not appropriate"},
                    FailureCase{"WithoutTheFileSystem", true, ENODEV, "Perhaps the operation is not supported"},
                    FailureCase{"OtherError", true, EIO, "The kernel says: Input/output error"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(KernelActor, MountsNothingThatIsNoVolumeOfItsOwn)
{
    ActingKernel kernel;
    kernel.plug("sdb", 16, 7);
    kernel.addPartition("sdb", 17, 1, kDataGuid, {"ID_FS_TYPE=LVM2_member"});

    const Outcome outcome = kernel.run({"mount", "disk7s1"});

    EXPECT_THAT(outcome.errors, HasSubstr("kDAReturnUnsupported"));
}

TEST(KernelActor, UnmountsAndTakesItsFolderAway)
{
    ActingKernel kernel;
    kernel.plugStick();
    ASSERT_EQ(kernel.run({"mount", "disk7s1"}).status, 0);

    const Outcome outcome = kernel.run({"unmount", "disk7s1"});

    EXPECT_EQ(outcome.output, "Volume EFI on disk7s1 unmounted\n") << outcome.errors;
    EXPECT_THAT(kernel.mountPoints(), IsEmpty());
    EXPECT_FALSE(fs::exists(kernel.media() / "ann/EFI"));
}

TEST(KernelActor, UnmountsAVolumeEverywhere)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.addMount("8:17", "/mnt/one");
    kernel.addMount("8:18", "/mnt/other");
    kernel.addMount("8:17", "/mnt/two");

    EXPECT_EQ(kernel.run({"unmount", "disk7s1"}).status, 0);

    EXPECT_THAT(kernel.mountPoints(), ElementsAre("/mnt/other"));
}

TEST(KernelActor, NamesTheProgramThatHoldsAVolume)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.addMount("8:17", "/mnt/efi");
    kernel.unmountError = EBUSY;
    const fs::path process = kernel.files().root() / "proc/4711";
    fs::create_directories(process / "fd");
    fs::create_symlink("/usr/bin/tail", process / "exe");
    fs::create_symlink("/mnt/efi/EFI/log.txt", process / "fd/3");
    std::ofstream(process / "stat") << "4711 (tail -f) S 42 4711";
    fs::create_directories(kernel.files().root() / "proc/42");
    fs::create_symlink("/usr/bin/bash", kernel.files().root() / "proc/42/exe");

    const Outcome outcome = kernel.run({"unmount", "disk7s1"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "Volume EFI on disk7s1 failed to unmount: dissented by PID 4711 (/usr/bin/tail)\n"
                              "Dissenter parent PPID 42 (/usr/bin/bash)\n");
}

TEST(KernelActor, TakesABusyVolumeAwayByForce)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.addMount("8:17", "/run/media/ann/EFI");
    kernel.unmountError = EBUSY;

    EXPECT_EQ(kernel.run({"unmount", "force", "disk7s1"}).status, 0);

    EXPECT_THAT(kernel.detached, ElementsAre("/run/media/ann/EFI"));
}

TEST(KernelActor, TakesNothingOfTheSystemAwayEvenByForce)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.addMount("8:17", "/boot/efi");
    kernel.unmountError = EBUSY;

    EXPECT_EQ(kernel.run({"unmount", "force", "disk7s1"}).status, 1);

    EXPECT_THAT(kernel.detached, IsEmpty());
    EXPECT_THAT(kernel.mountPoints(), ElementsAre("/boot/efi"));
}

TEST(KernelActor, NeverUnmountsTheRoot)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.addMount("8:18", "/", "ext4");

    const Outcome outcome = kernel.run({"unmount", "force", "disk7s2"});

    EXPECT_THAT(outcome.errors, HasSubstr("dissented by PID 0 (kernel)"));
    EXPECT_THAT(kernel.mountPoints(), ElementsAre("/"));
}

TEST(KernelActor, RenamesAMountedVolumeAndMountsItAgainUnderItsNewName)
{
    ActingKernel kernel;
    kernel.plugStick();
    ASSERT_EQ(kernel.run({"mount", "disk7s2"}).status, 0);

    const Outcome outcome = kernel.run({"rename", "disk7s2", "new name"});

    EXPECT_EQ(outcome.output, "Volume on disk7s2 renamed to NEW NAME\n") << outcome.errors;
    EXPECT_THAT(kernel.called(), ElementsAre("fatlabel -- sdb2 NEW NAME"));
    EXPECT_THAT(kernel.mountPoints(), ElementsAre(kernel.media() / "ann/NEW NAME"));
    EXPECT_FALSE(fs::exists(kernel.media() / "ann/STICK"));
}

TEST(KernelActor, MountsAVolumeAgainWhoseRenameFailed)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.addProgram("fatlabel", "echo bad sector; exit 1");
    ASSERT_EQ(kernel.run({"mount", "disk7s2"}).status, 0);

    const Outcome outcome = kernel.run({"rename", "disk7s2", "X"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "fatlabel failed with status 1: bad sector\n");
    EXPECT_THAT(kernel.mountPoints(), ElementsAre(kernel.media() / "ann/STICK"));
}

TEST(KernelActor, SaysSoWhereAVolumeCannotBeMountedAgain)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.addProgram("fatlabel", "exit 1");
    ASSERT_EQ(kernel.run({"mount", "disk7s2"}).status, 0);
    kernel.mountError = EIO;

    const Outcome outcome = kernel.run({"rename", "disk7s2", "X"});

    EXPECT_THAT(outcome.errors, HasSubstr("fatlabel failed with status 1"));
    EXPECT_THAT(outcome.errors, HasSubstr("disk7s2 is not mounted again"));
}

TEST(KernelActor, LeavesAnUnmountedVolumeUnmountedWhoseRenameFailed)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.addProgram("fatlabel", "exit 1");

    EXPECT_EQ(kernel.run({"rename", "disk7s2", "X"}).status, 1);

    EXPECT_THAT(kernel.mounted, IsEmpty());
}

TEST(KernelActor, RenamesNothingThatTheSystemHasMountedElsewhere)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.addMount("8:17", "/boot/efi");

    const Outcome outcome = kernel.run({"rename", "disk7s1", "X"});

    EXPECT_THAT(outcome.errors, HasSubstr("It is mounted at /boot/efi"));
    EXPECT_THAT(kernel.called(), IsEmpty());
    EXPECT_THAT(kernel.mountPoints(), ElementsAre("/boot/efi"));
}

struct NameCase {
    const char *name;
    std::string asked;
    std::string given;
};

class HandsANameOn : public testing::TestWithParam<NameCase> {};

TEST_P(HandsANameOn, AsOneArgument)
{
    ActingKernel kernel;
    kernel.plug("sdb", 16, 7);
    kernel.addPartition("sdb", 17, 1, kDataGuid, {"ID_FS_TYPE=ext4", "ID_FS_LABEL_ENC=data"});

    EXPECT_EQ(kernel.run({"rename", "disk7s1", GetParam().asked}).status, 0);

    EXPECT_THAT(kernel.called(), ElementsAre("e2label sdb1 " + GetParam().given));
}

INSTANTIATE_TEST_SUITE_P(KernelActor, HandsANameOn,
                         testing::Values(NameCase{"Option", "-rf", "-rf"}, NameCase{"Shell", "$(reboot)", "$(reboot)"},
                                         NameCase{"Path", "../../etc", ".._.._etc"}, NameCase{"Two", "a;b", "a;b"},
                                         NameCase{"Long", std::string(255, 'a'), std::string(16, 'a')},
                                         NameCase{"NoUtf8", "a\xFFz", "a_z"}, NameCase{"Newline", "a\nb", "a_b"}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(KernelActor, NamesThePackageOfAMissingProgram)
{
    ActingKernel kernel;
    kernel.plugStick();
    ASSERT_EQ(kernel.run({"mount", "disk7s1"}).status, 0);
    kernel.removeProgram("fatlabel");

    const Outcome outcome = kernel.run({"rename", "disk7s1", "X"});

    EXPECT_EQ(outcome.errors, "The program fatlabel is missing: install the package dosfstools\n");
    EXPECT_EQ(kernel.mountPoints().size(), 1);
}

TEST(KernelActor, EjectsAStickOnceAllItsVolumesAreUnmounted)
{
    ActingKernel kernel;
    kernel.plugStick();
    const std::string path = "pci0000:00/0000:00:14.0/usb1/1-1/1-1:1.0/host2/target2:0:0/sdb/block/sdb";
    kernel.files().setAttribute(path, "device/delete", "");
    kernel.addMount("8:17", "/mnt/efi");
    kernel.addMount("8:18", "/mnt/stick");

    const Outcome outcome = kernel.run({"eject", "disk7"});

    EXPECT_EQ(outcome.output, "Disk disk7 ejected\n") << outcome.errors;
    EXPECT_THAT(kernel.mountPoints(), IsEmpty());
    std::ifstream removal(kernel.files().root() / "sys/devices" / path / "device/delete");
    EXPECT_EQ(removal.get(), '1');
}

TEST(KernelActor, GivesARemovableMediumOut)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.setRemovable("sdb");

    EXPECT_EQ(kernel.run({"eject", "disk7s1"}).status, 0);

    EXPECT_THAT(kernel.asked, ElementsAre("ejectMedium"));
}

TEST(KernelActor, LetsAStickGoThatKeepsItsMedium)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.setRemovable("sdb");
    kernel.ejectError = EBUSY;
    const std::string path = "pci0000:00/0000:00:14.0/usb1/1-1/1-1:1.0/host2/target2:0:0/sdb/block/sdb";
    kernel.files().setAttribute(path, "device/delete", "");

    EXPECT_EQ(kernel.run({"eject", "disk7"}).status, 0);

    std::ifstream removal(kernel.files().root() / "sys/devices" / path / "device/delete");
    EXPECT_EQ(removal.get(), '1');
}

TEST(KernelActor, EjectsNothingAsAUserWhereThereIsNoUDisks)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.addMount("8:17", "/mnt/efi");
    kernel.isRoot = false;

    const Outcome outcome = kernel.run({"eject", "disk7"});

    EXPECT_EQ(outcome.errors, "Ejection of disk7 failed: Perhaps the operation is not allowed by the invoking user "
                              "(kDAReturnNotPrivileged)\n");
    EXPECT_THAT(kernel.mountPoints(), ElementsAre("/mnt/efi"));
}

TEST(KernelActor, EjectsNoDiskOfTheRunningSystem)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.addMount("8:18", "/", "ext4");
    kernel.addMount("8:17", "/boot/efi");

    const Outcome outcome = kernel.run({"eject", "disk7"});

    EXPECT_THAT(outcome.errors, HasSubstr("Unmount of disk7 failed"));
    EXPECT_THAT(kernel.mountPoints(), ElementsAre("/", "/boot/efi"));
}

struct VerbCase {
    const char *name;
    std::vector<std::string_view> words;
};

class TouchesNoOtherDisk : public testing::TestWithParam<VerbCase> {};

TEST_P(TouchesNoOtherDisk, ThatHasTakenTheNameOfTheDevice)
{
    ActingKernel kernel;
    kernel.plugStick();
    for (const char *name : {"sdb", "sdb1", "sdb2"})
        kernel.takeOver(name, 8); // While the folders still tell of the old one.

    const Outcome outcome = kernel.run(GetParam().words);

    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("Unable to find disk for disk7"));
    EXPECT_THAT(kernel.called(), IsEmpty());
    EXPECT_THAT(kernel.mounted, IsEmpty());
    EXPECT_THAT(kernel.asked, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(KernelActor, TouchesNoOtherDisk,
                         testing::Values(VerbCase{"Mount", {"mount", "disk7s1"}},
                                         VerbCase{"Rename", {"rename", "disk7s1", "X"}},
                                         VerbCase{"Eject", {"eject", "disk7"}},
                                         VerbCase{"EraseVolume", {"eraseVolume", "FAT32", "X", "disk7s1"}},
                                         VerbCase{"EraseDisk", {"eraseDisk", "FAT32", "X", "disk7"}}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(KernelActor, FindsTheDiskByItsNameWhereTheKernelTellsNoNumberOfAnOpenOne)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.knowsSequences = false;

    EXPECT_EQ(kernel.run({"mount", "disk7s1"}).status, 0);
}

} // namespace
} // namespace brindle::tools
