#include "machine/MachineFileActor.h"

#include "TestMachine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <functional>

#include <sys/inotify.h>
#include <unistd.h>

namespace brindle::tools {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

Partition partitionOf(const TestMachine &machine, std::string_view identifier)
{
    const MachineFile file = machine.file();
    const Inventory inventory = file.read().inventory;
    return *findDevice(inventory, identifier)->partition;
}

TEST(Erase, KeepsTypeAndUuidOfAnEfiPartition)
{
    const TestMachine machine;
    ASSERT_EQ(machine.diskutil({"mount", "disk2s1"}).status, 0);
    machine.writeFile("Volumes/OPENCORE/EFI/OC/config.plist", "x");
    const Partition before = partitionOf(machine, "disk2s1");

    const Outcome outcome = machine.diskutil({"eraseVolume", "FAT32", "efi", "disk2s1"});

    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(outcome.output, EndsWith("Finished erase on disk2s1 EFI\n"));
    const Partition after = partitionOf(machine, "disk2s1");
    EXPECT_EQ(after.type, "EFI");
    EXPECT_EQ(after.uuid, before.uuid);
    EXPECT_EQ(after.sizeBytes, before.sizeBytes);
    EXPECT_EQ(after.volume->name, "EFI");
    EXPECT_NE(after.volume->uuid, before.volume->uuid);
}

/// How often the machine file is replaced while \a work runs. The way from is watched too, for events that are alike
/// are told as one.
int replacementsDuring(const TestMachine &machine, const std::function<void()> &work)
{
    const int watch = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    EXPECT_GE(::inotify_add_watch(watch, machine.root().c_str(), IN_MOVED_FROM | IN_MOVED_TO), 0);
    work();
    int count = 0;
    alignas(inotify_event) std::array<char, 4096> events{};
    for (ssize_t length = 0; (length = ::read(watch, events.data(), events.size())) > 0;) {
        for (ssize_t at = 0; at < length; ++count)
            at += static_cast<ssize_t>(sizeof(inotify_event)) +
                  reinterpret_cast<const inotify_event *>(events.data() + at)->len; // NOLINT: inotify's own way
    }
    ::close(watch);
    return count / 2;
}

TEST(Erase, ChangesTheMachineFileOnce)
{
    const TestMachine machine;

    const int volume = replacementsDuring(machine, [&] {
        EXPECT_EQ(machine.diskutil({"eraseVolume", "ExFAT", "DATA", "disk2s2"}).status, 0);
    });
    const int disk = replacementsDuring(machine, [&] {
        EXPECT_EQ(machine.diskutil({"eraseDisk", "APFS", "DATA", "disk2"}).status, 0);
    });

    EXPECT_EQ(volume, 1);
    EXPECT_EQ(disk, 1);
    EXPECT_EQ(machine.mountPointOf("disk5s1"), "Volumes/DATA");
}

TEST(Erase, TellsTheStepsOfAVolume)
{
    const TestMachine machine;

    const Outcome mounted = machine.diskutil({"eraseVolume", "JHFS+", "Mac", "disk2s2"});
    const Outcome unmounted = machine.diskutil({"eraseVolume", "FAT32", "EFI", "disk2s1"});

    EXPECT_EQ(mounted.output,
              "Started erase on disk2s2\n"
              "Unmounting disk\n"
              "Erasing\n"
              "Initialized /dev/rdisk2s2 as a 15 GB case-insensitive HFS Plus volume with a 8192k journal\n"
              "Mounting disk\n"
              "Finished erase on disk2s2 Mac\n");
    EXPECT_EQ(unmounted.output, "Started erase on disk2s1\n"
                                "Unmounting disk\n"
                                "Erasing\n"
                                "512 bytes per physical sector\n"
                                "/dev/rdisk2s1: 403266 sectors in 403266 FAT32 clusters (512 bytes/cluster)\n"
                                "Finished erase on disk2s1 EFI\n");
}

TEST(Erase, RemovesTheFiles)
{
    const TestMachine machine;
    ASSERT_EQ(machine.diskutil({"mount", "disk2s1"}).status, 0);
    machine.writeFile("Volumes/OPENCORE/EFI/OC/config.plist", "x");

    ASSERT_EQ(machine.diskutil({"eraseVolume", "FAT32", "NEW", "disk2s1"}).status, 0);

    EXPECT_EQ(machine.mountPointOf("disk2s1"), "Volumes/NEW");
    EXPECT_TRUE(std::filesystem::is_empty(machine.root() / "Volumes/NEW"));
    EXPECT_FALSE(machine.hasFile("Volumes/OPENCORE"));
    EXPECT_FALSE(machine.hasFile("contents/22222222-0000-4000-8000-000000000001"));
}

TEST(Erase, LeavesAnEfiPartitionUnmountedThatWas)
{
    const TestMachine machine;

    ASSERT_EQ(machine.diskutil({"eraseVolume", "FAT32", "NEW", "disk2s1"}).status, 0);

    EXPECT_EQ(machine.mountPointOf("disk2s1"), "");
}

TEST(Erase, MountsAnOrdinaryVolumeUnderItsNewName)
{
    const TestMachine machine;
    machine.writeFile("Volumes/DATA/file", "x");

    ASSERT_EQ(machine.diskutil({"eraseVolume", "FAT32", "DATA", "disk2s2"}).status, 0);

    EXPECT_EQ(machine.mountPointOf("disk2s2"), "Volumes/DATA");
    EXPECT_FALSE(machine.hasFile("Volumes/DATA/file"));
}

struct FormatCase {
    const char *name;
    const char *format;
    const char *disk;
    const char *type;
    const char *fileSystem;
    const char *label;
};

class WritesTheFormat : public testing::TestWithParam<FormatCase> {};

TEST_P(WritesTheFormat, WithItsTypeAndLabel)
{
    const FormatCase &wanted = GetParam();
    const TestMachine machine;

    const Outcome outcome = machine.diskutil({"eraseVolume", wanted.format, "New Volume", wanted.disk});

    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    const Partition partition = partitionOf(machine, wanted.disk);
    EXPECT_EQ(partition.type, wanted.type);
    EXPECT_EQ(partition.volume->fileSystem, wanted.fileSystem);
    EXPECT_EQ(partition.volume->name, wanted.label);
}

INSTANTIATE_TEST_SUITE_P(
    Erase, WritesTheFormat,
    testing::Values(FormatCase{"ExFatInGpt", "ExFAT", "disk2s2", "Microsoft Basic Data", "exfat", "New Volume"},
                    FormatCase{"ExFatInMbr", "exfat", "disk3s1", "Windows_NTFS", "exfat", "New Volume"},
                    FormatCase{"FatInGpt", "FAT32", "disk2s2", "Microsoft Basic Data", "vfat", "NEW VOLUME"},
                    FormatCase{"FatInMbr", "fat32", "disk3s1", "DOS_FAT_32", "vfat", "NEW VOLUME"},
                    FormatCase{"JournaledHfs", "JHFS+", "disk2s2", "Apple_HFS", "hfsplus", "New Volume"},
                    FormatCase{"ApfsStore", "APFS", "disk2s2", "Apple_APFS", "apfs", ""}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(Erase, GivesApfsAContainerUnderANewNumber)
{
    const TestMachine machine;

    const Outcome outcome = machine.diskutil({"eraseVolume", "APFS", "Mac", "disk2s2"});

    EXPECT_THAT(outcome.output, EndsWith("Finished erase on disk5s1 Mac\n"));
    EXPECT_EQ(partitionOf(machine, "disk2s2").container, "disk5");
    EXPECT_EQ(machine.labelOf("disk5s1"), "Mac");
    EXPECT_EQ(machine.mountPointOf("disk5s1"), "Volumes/Mac");
    EXPECT_EQ(machine.json()["nextDisk"], 6);
}

TEST(Erase, MakesAnApfsVolumeEmptyWithinItsContainer)
{
    const TestMachine machine;
    ASSERT_EQ(machine.diskutil({"mount", "disk1s3"}).status, 0);
    machine.writeFile("Volumes/Spare/file", "x");

    const Outcome outcome = machine.diskutil({"eraseVolume", "APFS", "Fresh", "disk1s3"});

    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(machine.mountPointOf("disk1s3"), "Volumes/Fresh");
    EXPECT_FALSE(machine.hasFile("Volumes/Fresh/file"));
}

TEST(Erase, GivesAWholeDiskAnEfiPartitionAndAVolume)
{
    const TestMachine machine;
    machine.writeFile("contents/22222222-0000-4000-8000-000000000001/EFI/OC/config.plist", "x");

    const Outcome outcome = machine.diskutil({"eraseDisk", "FAT32", "udisk", "GPT", "disk2"});

    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.output, "Started erase on disk2\n"
                              "Unmounting disk\n"
                              "Creating the partition map\n"
                              "Waiting for partitions to activate\n"
                              "Formatting disk2s2 as MS-DOS (FAT32) with name UDISK\n"
                              "512 bytes per physical sector\n"
                              "/dev/rdisk2s2: 30804560 sectors in 1925285 FAT32 clusters (8192 bytes/cluster)\n"
                              "Mounting disk\n"
                              "Finished erase on disk2\n");
    const Partition efi = partitionOf(machine, "disk2s1");
    EXPECT_EQ(efi.type, "EFI");
    EXPECT_EQ(efi.sizeBytes, 200U * 1024 * 1024);
    EXPECT_EQ(efi.volume->name, "EFI");
    EXPECT_NE(efi.uuid, "22222222-0000-4000-8000-000000000001");
    const Partition data = partitionOf(machine, "disk2s2");
    EXPECT_GE(data.offsetBytes, efi.offsetBytes + efi.sizeBytes);
    EXPECT_LT(data.offsetBytes + data.sizeBytes, 16'000'000'000U);
    EXPECT_EQ(machine.mountPointOf("disk2s2"), "Volumes/UDISK");
    EXPECT_EQ(machine.mountPointOf("disk2s1"), "");
    EXPECT_FALSE(machine.hasFile("contents/22222222-0000-4000-8000-000000000001"));
}

TEST(Erase, TurnsATableOfAnotherKindIntoAGpt)
{
    const TestMachine machine;
    auto json = machine.json();
    json["disks"][2]["partitions"][1].erase("holder");
    machine.write(json.dump());

    ASSERT_EQ(machine.diskutil({"eraseDisk", "JHFS+", "Mac", "disk3"}).status, 0);

    EXPECT_EQ(machine.json()["disks"][2]["scheme"], "GUID_partition_scheme");
    EXPECT_EQ(partitionOf(machine, "disk3s2").type, "Apple_HFS");
}

TEST(Erase, RefusesADiskThatIsTooSmall)
{
    const TestMachine machine;
    auto json = machine.json();
    json["disks"][1]["sizeBytes"] = 200U * 1024 * 1024;
    machine.write(json.dump());

    const Outcome outcome = machine.diskutil({"eraseDisk", "FAT32", "X", "disk2"});

    EXPECT_EQ(outcome.errors, "disk2 is too small for an EFI partition and a volume\n");
    EXPECT_EQ(machine.text(), json.dump());
}

struct RefusedCase {
    const char *name;
    std::vector<std::string> arguments;
    bool isPrivileged;
    const char *error;
};

class RefusesToErase : public testing::TestWithParam<RefusedCase> {};

TEST_P(RefusesToErase, AndChangesNothing)
{
    const TestMachine machine;

    const Outcome outcome = machine.diskutil(GetParam().arguments, GetParam().isPrivileged);

    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr(GetParam().error));
    EXPECT_EQ(machine.text(), sampleMachineText());
}

constexpr const char *kCantUnmount = "Error: -69888: Couldn't unmount disk\n";
constexpr const char *kCantOpen = "Error: -69877: Couldn't open device\n";

INSTANTIATE_TEST_SUITE_P(
    Erase, RefusesToErase,
    testing::Values(
        RefusedCase{"TheBootDisk", {"eraseDisk", "FAT32", "X", "GPT", "disk0"}, true, kCantUnmount},
        RefusedCase{"TheStoreOfTheSystem", {"eraseVolume", "FAT32", "X", "disk0s2"}, true, kCantUnmount},
        RefusedCase{"TheSystemVolume", {"eraseVolume", "APFS", "X", "disk1s1"}, true, kCantUnmount},
        RefusedCase{"TheSystemByItsMountPoint", {"eraseVolume", "APFS", "X", "/"}, true, kCantUnmount},
        RefusedCase{"SwapInUse", {"eraseVolume", "FAT32", "X", "disk3s2"}, true, "disk3s2 is in use by swap\n"},
        RefusedCase{"TheDiskOfSwapInUse", {"eraseDisk", "FAT32", "X", "disk3"}, true, "disk3s2 is in use by swap\n"},
        RefusedCase{"AWholeDiskAsAVolume", {"eraseVolume", "FAT32", "X", "disk2"}, true, "disk2 is not a volume"},
        RefusedCase{"AContainerAsAVolume", {"eraseVolume", "APFS", "X", "disk1"}, true, "disk1 is not a volume"},
        RefusedCase{"APartitionAsADisk", {"eraseDisk", "FAT32", "X", "disk2s1"}, true, "disk2s1 is not a whole disk"},
        RefusedCase{"AnApfsVolumeToFat", {"eraseVolume", "FAT32", "X", "disk1s3"}, true, "to APFS alone"},
        RefusedCase{"AnEfiPartitionToApfs", {"eraseVolume", "APFS", "X", "disk2s1"}, true, "EFI partition"},
        RefusedCase{"AnEfiPartitionWithoutRoot", {"eraseVolume", "FAT32", "X", "disk2s1"}, false, kCantOpen},
        RefusedCase{"AnInternalDiskWithoutRoot", {"eraseDisk", "FAT32", "X", "disk0"}, false, kCantOpen},
        RefusedCase{
            "ADiskThatIsNotThere", {"eraseDisk", "FAT32", "X", "disk9"}, true, "Unable to find disk for disk9\n"},
        RefusedCase{"ToAnUnknownFormat",
                    {"eraseVolume", "ZFS", "X", "disk2s2"},
                    true,
                    "ZFS does not appear to be a valid file system format or partition type\n"},
        RefusedCase{"ToAnotherScheme",
                    {"eraseDisk", "FAT32", "X", "MBR", "disk2"},
                    true,
                    "MBR does not appear to be a valid partition scheme"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(Erase, RefusesABusyVolume)
{
    const TestMachine machine;
    auto json = machine.json();
    json["mounts"][2]["dissenter"] = {{"pid", 7}, {"program", "/bin/sleep"}};
    machine.write(json.dump());

    EXPECT_EQ(machine.diskutil({"eraseVolume", "FAT32", "X", "disk2s2"}).errors, kCantUnmount);
    EXPECT_EQ(machine.text(), json.dump());
}

TEST(Erase, ErasesAnExternalVolumeWithoutRoot)
{
    const TestMachine machine;

    EXPECT_EQ(machine.diskutil({"eraseVolume", "FAT32", "X", "disk2s2"}, false).status, 0);
}

struct HostileCase {
    const char *name;
    std::string label;
    const char *written;    ///< On ExFAT.
    const char *mountPoint; ///< Where that volume is mounted.
};

class TakesANameAsData : public testing::TestWithParam<HostileCase> {};

TEST_P(TakesANameAsData, WhenItRenames)
{
    const TestMachine machine;

    const Outcome outcome = machine.diskutil({"rename", "disk2s2", GetParam().label});

    EXPECT_EQ(outcome.output, std::string("Volume on disk2s2 renamed to ") + GetParam().written + '\n');
    EXPECT_EQ(machine.labelOf("disk2s2"), GetParam().written);
}

TEST_P(TakesANameAsData, WhenItErasesAndMounts)
{
    const TestMachine machine;

    const Outcome outcome = machine.diskutil({"eraseVolume", "ExFAT", GetParam().label, "disk2s2"});

    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(machine.labelOf("disk2s2"), GetParam().written);
    EXPECT_EQ(machine.mountPointOf("disk2s2"), GetParam().mountPoint);
    EXPECT_TRUE(machine.hasFile(GetParam().mountPoint));
}

INSTANTIATE_TEST_SUITE_P(Erase, TakesANameAsData,
                         testing::Values(HostileCase{"PathUpwards", "../../etc", ".._.._etc", "Volumes/.._.._etc"},
                                         HostileCase{"Option", "-rf", "-rf", "Volumes/-rf"},
                                         HostileCase{"LongOption", "--help", "--help", "Volumes/--help"},
                                         HostileCase{"Newline", "a\nb", "a_b", "Volumes/a_b"},
                                         HostileCase{"Nul", std::string("a\0b", 3), "a_b", "Volumes/a_b"},
                                         HostileCase{"NoUtf8", "\xFF\xC3", "__", "Volumes/__"},
                                         HostileCase{"Long", std::string(255, 'x'), "xxxxxxxxxxx",
                                                     "Volumes/xxxxxxxxxxx"},
                                         HostileCase{"ParentFolder", "..", "..", "Volumes/__"},
                                         HostileCase{"Empty", "", "", "Volumes/Untitled"},
                                         HostileCase{"Blanks", "  ", "", "Volumes/Untitled"},
                                         HostileCase{"Braces", "{} %s", "{} %s", "Volumes/{} %s"}),
                         [](const auto &info) { return std::string(info.param.name); });

} // namespace
} // namespace brindle::tools
