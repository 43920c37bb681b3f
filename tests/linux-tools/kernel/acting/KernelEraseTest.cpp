#include "ActingKernel.h"

#include "kernel/BlockProbe.h"
#include "kernel/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include <fcntl.h>

namespace brindle::tools {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace fs = std::filesystem;

constexpr const char *kUsbDisk = "pci0000:00/0000:00:14.0/usb1/1-1/1-1:1.0/host2/target2:0:0/sdb/block/sdb";

ProbedContents contentsOf(const fs::path &node)
{
    return probeContents(Descriptor(node, O_RDONLY).get());
}

struct UseCase {
    const char *name;
    void (*use)(ActingKernel &kernel);
    const char *reason;
};

class NeverErases : public testing::TestWithParam<UseCase> {};

TEST_P(NeverErases, WhatTheSystemMakesUseOf)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.addMount("8:17", "/run/media/ann/EFI");
    GetParam().use(kernel);
    const auto mountsBefore = kernel.mountPoints();

    const Outcome disk = kernel.run({"eraseDisk", "FAT32", "X", "GPT", "disk7"});
    const Outcome volume = kernel.run({"eraseVolume", "FAT32", "X", "disk7s2"});

    for (const Outcome &outcome : {disk, volume}) {
        EXPECT_EQ(outcome.status, 1);
        EXPECT_THAT(outcome.errors, StartsWith(GetParam().reason));
        EXPECT_THAT(outcome.errors, EndsWith("Error: -69888: Couldn't unmount disk\n"));
    }
    EXPECT_THAT(kernel.called(), IsEmpty());
    EXPECT_THAT(kernel.asked, IsEmpty());
    EXPECT_EQ(kernel.mountPoints(), mountsBefore);
}

INSTANTIATE_TEST_SUITE_P(
    KernelErase, NeverErases,
    testing::Values(
        UseCase{"VolumeGroupOrEncryption", [](ActingKernel &kernel) { kernel.hold("sdb2", "dm-0"); },
                "disk7s2 is in use by dm-0\n"},
        UseCase{"Raid", [](ActingKernel &kernel) { kernel.hold("sdb2", "md127"); }, "disk7s2 is in use by md127\n"},
        UseCase{"Swap",
                [](ActingKernel &kernel) {
                    std::ofstream(kernel.files().root() / "proc/swaps")
                        << "Filename\t\t\t\tType\n/dev/sdb2                               partition\t2\t0\t-2\n";
                },
                "disk7s2 is in use by the system's swap space\n"},
        UseCase{"Root", [](ActingKernel &kernel) { kernel.addMount("8:18", "/", "ext4"); },
                "disk7s2 carries what is mounted at /\n"},
        UseCase{"Home", [](ActingKernel &kernel) { kernel.addMount("8:18", "/home", "ext4"); },
                "disk7s2 carries what is mounted at /home\n"},
        UseCase{"PlaceThatOnlyBeginsAsMedia",
                [](ActingKernel &kernel) { kernel.addMount("8:18", "/media2/x", "ext4"); },
                "disk7s2 carries what is mounted at /media2/x\n"},
        UseCase{"Overlay",
                [](ActingKernel &kernel) {
                    kernel.addMount("8:18", "/media/system", "ext4");
                    kernel.addMountLine("40 1 0:50 / / rw - overlay overlay "
                                        "rw,lowerdir=/media/system/lower,upperdir=/media/system/upper");
                },
                "disk7s2 carries what is mounted at /\n"},
        UseCase{"MountedVolumeGroup",
                [](ActingKernel &kernel) {
                    kernel.files().addVirtual("253:0", "dm-0", {"sdb2"});
                    kernel.addMount("253:0", "/mnt/group", "ext4");
                },
                "disk7s2 carries what is mounted at /mnt/group\n"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(KernelErase, RefusesAVolumeThatAProgramHolds)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.addMount("8:18", "/mnt/stick");
    kernel.unmountError = 16;

    const Outcome outcome = kernel.run({"eraseVolume", "FAT32", "X", "disk7s2"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, EndsWith("Error: -69888: Couldn't unmount disk\n"));
    EXPECT_THAT(kernel.called(), IsEmpty());
}

TEST(KernelErase, RefusesAWriteProtectedDisk)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.files().setAttribute(kUsbDisk, "ro", "1");

    EXPECT_EQ(kernel.run({"eraseDisk", "FAT32", "X", "disk7"}).errors, "disk7 is read-only\n");
    EXPECT_THAT(kernel.called(), IsEmpty());
}

TEST(KernelErase, NamesThePackageBeforeAnythingIsTouched)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.addMount("8:18", "/mnt/stick");
    kernel.removeProgram("mkfs.hfsplus");

    const Outcome outcome = kernel.run({"eraseDisk", "JHFS+", "X", "disk7"});

    EXPECT_EQ(outcome.errors, "The program mkfs.hfsplus is missing: install the package hfsprogs\n");
    EXPECT_THAT(kernel.mountPoints(), ElementsAre("/mnt/stick"));
    EXPECT_THAT(kernel.asked, IsEmpty());
}

struct SmallCase {
    const char *name;
    std::vector<std::string_view> words;
    std::uint64_t sizeBytes; ///< Of what is erased.
    const char *error;
};

class RefusesWhatIsTooSmall : public testing::TestWithParam<SmallCase> {};

TEST_P(RefusesWhatIsTooSmall, BeforeAnythingIsTouched)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.addMount("8:18", "/mnt/stick");
    const std::string path = GetParam().words.back() == "disk7" ? kUsbDisk : std::string(kUsbDisk) + "/sdb2";
    kernel.files().setAttribute(path, "size", std::to_string(GetParam().sizeBytes / 512));

    const Outcome outcome = kernel.run(GetParam().words);

    EXPECT_EQ(outcome.errors, GetParam().error);
    EXPECT_THAT(kernel.mountPoints(), ElementsAre("/mnt/stick"));
    EXPECT_THAT(kernel.called(), IsEmpty());
    EXPECT_THAT(kernel.asked, IsEmpty());
}

constexpr std::uint64_t kMiB = 1024 * 1024;

INSTANTIATE_TEST_SUITE_P(KernelErase, RefusesWhatIsTooSmall,
                         testing::Values(SmallCase{"ApfsVolume",
                                                   {"eraseVolume", "APFS", "X", "disk7s2"},
                                                   128 * kMiB - 512,
                                                   "disk7s2 is too small for APFS, which needs 134.2 MB\n"},
                                         SmallCase{"ExFatVolume",
                                                   {"eraseVolume", "ExFAT", "X", "disk7s2"},
                                                   3 * kMiB - 512,
                                                   "disk7s2 is too small for ExFAT, which needs 3.1 MB\n"},
                                         SmallCase{"FatVolume",
                                                   {"eraseVolume", "FAT32", "X", "disk7s2"},
                                                   kMiB / 16 - 512,
                                                   "disk7s2 is too small for MS-DOS (FAT32), which needs 65.5 KB\n"},
                                         SmallCase{"ApfsDisk",
                                                   {"eraseDisk", "APFS", "X", "GPT", "disk7"},
                                                   (128 + 202) * kMiB - 512,
                                                   "disk7 is too small for APFS, which needs 134.2 MB\n"}),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(KernelErase, TakesTheSmallestVolumeThatHoldsTheFormat)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.files().setAttribute(std::string(kUsbDisk) + "/sdb2", "size", std::to_string(3 * kMiB / 512));

    EXPECT_EQ(kernel.run({"eraseVolume", "ExFAT", "X", "disk7s2"}).status, 0);
    EXPECT_THAT(kernel.called(), ElementsAre("mkfs.exfat -L X sdb2"));
}

TEST(KernelErase, UnmountsWipesMakesAndMountsAVolume)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.files().writeNode("sdb2", fatWith("OLD", 4096));
    kernel.addMount("8:18", "/mnt/stick");

    const Outcome outcome = kernel.run({"eraseVolume", "FAT32", "New", "/mnt/stick"});

    EXPECT_THAT(outcome.output, HasSubstr("Started erase on disk7s2\nUnmounting disk\nErasing\n")) << outcome.errors;
    EXPECT_THAT(outcome.output, EndsWith("Mounting disk\nFinished erase on disk7s2 NEW\n"));
    EXPECT_THAT(kernel.called(), ElementsAre("mkfs.fat -I -F 32 -n NEW sdb2"));
    EXPECT_FALSE(contentsOf(kernel.files().node("sdb2")).volume);
    EXPECT_THAT(kernel.mountPoints(), ElementsAre(kernel.media() / "ann/NEW"));
}

TEST(KernelErase, LeavesAnEfiPartitionUnmountedThatWasAndItsTableAsItIs)
{
    ActingKernel kernel;
    kernel.plugStick();

    const Outcome outcome = kernel.run({"eraseVolume", "FAT32", "efi", "disk7s1"});

    EXPECT_THAT(outcome.output, EndsWith("Finished erase on disk7s1 EFI\n")) << outcome.errors;
    EXPECT_THAT(kernel.mounted, IsEmpty());
    EXPECT_TRUE(contentsOf(kernel.files().node("sdb")).table.empty());
}

struct FormatCase {
    const char *name;
    const char *format;
    const char *call;
    const char *type;
};

class ErasesADisk : public testing::TestWithParam<FormatCase> {};

TEST_P(ErasesADisk, WithALongNameInEachFormat)
{
    ActingKernel kernel;
    kernel.plugStick();

    const Outcome outcome = kernel.run({"eraseDisk", GetParam().format, "Samsung SSD 980 PRO", "GPT", "disk7"});

    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(kernel.called(), ElementsAre("mkfs.fat -I -F 32 -n EFI sdb1", GetParam().call));
    EXPECT_THAT(kernel.asked,
                ElementsAre("removePartition 1", "removePartition 2", "addPartition 1", "addPartition 2"));
    const ProbedContents contents = contentsOf(kernel.files().node("sdb"));
    EXPECT_EQ(contents.table, "gpt");
    ASSERT_EQ(contents.entries.size(), 2);
    EXPECT_EQ(contents.entries[0].type, kEfiGuid);
    EXPECT_EQ(contents.entries[0].sizeBytes, 200 * 1024 * 1024);
    EXPECT_EQ(contents.entries[1].type, GetParam().type);
}

INSTANTIATE_TEST_SUITE_P(KernelErase, ErasesADisk,
                         testing::Values(FormatCase{"Fat32", "FAT32", "mkfs.fat -I -F 32 -n SAMSUNG SSD sdb2",
                                                    kDataGuid},
                                         FormatCase{"ExFat", "ExFAT", "mkfs.exfat -L Samsung SSD sdb2", kDataGuid},
                                         FormatCase{"Apfs", "APFS", "mkapfs -L Samsung SSD 980 PRO sdb2",
                                                    "7c3457ef-0000-11aa-aa11-00306543ecac"},
                                         FormatCase{"Jhfs", "JHFS+", "mkfs.hfsplus -J -v Samsung SSD 980 PRO sdb2",
                                                    "48465300-0000-11aa-aa11-00306543ecac"}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(KernelErase, TellsWhyTheMakerOfAFileSystemFailed)
{
    ActingKernel kernel;
    kernel.plugStick();
    kernel.addProgram("mkfs.exfat", "echo 'no space left' >&2; exit 1");

    const Outcome outcome = kernel.run({"eraseVolume", "ExFAT", "X", "disk7s2"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "mkfs.exfat failed with status 1: no space left\n");
}

} // namespace
} // namespace brindle::tools
