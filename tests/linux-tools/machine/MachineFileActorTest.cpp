#include "machine/MachineFileActor.h"

#include "TestMachine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

constexpr std::string_view kTryReadOnly =
    "If you think the volume is supported but damaged, try the \"readOnly\" option\n";

std::string failedToMount(std::string_view argument, std::string_view reason)
{
    return "Volume on " + std::string(argument) + " failed to mount\nPerhaps the operation is " + std::string(reason) +
           '\n' + std::string(kTryReadOnly);
}

/// The sample machine with a process that keeps DATA busy.
std::string busyMachineText()
{
    auto json = nlohmann::ordered_json::parse(sampleMachineText());
    json["mounts"][2]["dissenter"] = {{"pid", 47781}, {"program", "/usr/bin/tail"}};
    return json.dump(2);
}

struct EchoCase {
    const char *name;
    const char *argument;
};

class EchoesTheArgument : public testing::TestWithParam<EchoCase> {};

TEST_P(EchoesTheArgument, OfAMountAndAnUnmount)
{
    const TestMachine machine;
    const std::string argument = GetParam().argument;

    const Outcome mounted = machine.diskutil({"mount", argument});
    const std::string mountPoint = machine.mountPointOf("disk2s1");
    const Outcome unmounted = machine.diskutil({"unmount", argument});

    EXPECT_EQ(mounted.status, 0);
    EXPECT_EQ(mounted.output, "Volume OPENCORE on " + argument + " mounted\n");
    EXPECT_EQ(mounted.errors, "");
    EXPECT_EQ(mountPoint, "Volumes/OPENCORE");
    EXPECT_EQ(unmounted.output, "Volume OPENCORE on " + argument + " unmounted\n");
    EXPECT_EQ(machine.mountPointOf("disk2s1"), "");
}

INSTANTIATE_TEST_SUITE_P(MachineFileActor, EchoesTheArgument,
                         testing::Values(EchoCase{"Identifier", "disk2s1"}, EchoCase{"Path", "/dev/disk2s1"},
                                         EchoCase{"VolumeName", "OPENCORE"}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(MachineFileActor, KeepsTheFilesWithTheirPartition)
{
    const TestMachine machine;
    ASSERT_EQ(machine.diskutil({"mount", "disk2s1"}).status, 0);
    machine.writeFile("Volumes/OPENCORE/EFI/OC/config.plist", "x");

    ASSERT_EQ(machine.diskutil({"unmount", "disk2s1"}).status, 0);
    const bool isThereUnmounted = machine.hasFile("Volumes/OPENCORE");
    ASSERT_EQ(machine.diskutil({"mount", "disk2s1"}).status, 0);

    EXPECT_FALSE(isThereUnmounted);
    EXPECT_TRUE(machine.hasFile("Volumes/OPENCORE/EFI/OC/config.plist"));
}

TEST(MachineFileActor, MountsOnAFolderThatIsNoLink)
{
    const TestMachine machine;

    ASSERT_EQ(machine.diskutil({"mount", "disk2s1"}).status, 0);

    EXPECT_EQ(std::filesystem::symlink_status(machine.root() / "Volumes/OPENCORE").type(),
              std::filesystem::file_type::directory);
}

TEST(MachineFileActor, NumbersATakenName)
{
    const TestMachine machine;
    ASSERT_EQ(machine.diskutil({"rename", "disk2s1", "EFI"}).status, 0);
    ASSERT_EQ(machine.diskutil({"mount", "disk0s1"}).status, 0);

    ASSERT_EQ(machine.diskutil({"mount", "disk2s1"}).status, 0);

    EXPECT_EQ(machine.mountPointOf("disk0s1"), "Volumes/EFI");
    EXPECT_EQ(machine.mountPointOf("disk2s1"), "Volumes/EFI 1");
}

TEST(MachineFileActor, NumbersANameThatAFolderHas)
{
    const TestMachine machine;
    machine.writeFile("Volumes/EFI/left over", "x");

    ASSERT_EQ(machine.diskutil({"mount", "disk0s1"}).status, 0);

    EXPECT_EQ(machine.mountPointOf("disk0s1"), "Volumes/EFI 1");
}

TEST(MachineFileActor, LeavesAMountedVolumeWhereItIs)
{
    const TestMachine machine;

    const Outcome outcome = machine.diskutil({"mount", "disk2s2"});

    EXPECT_EQ(outcome.output, "Volume DATA on disk2s2 mounted\n");
    EXPECT_EQ(machine.text(), sampleMachineText());
}

TEST(MachineFileActor, TakesAMountPointForItsVolume)
{
    const TestMachine machine;
    const std::string mountPoint = (machine.root() / "Volumes/DATA").string();

    const Outcome outcome = machine.diskutil({"unmount", mountPoint});

    EXPECT_EQ(outcome.output, "Volume DATA on " + mountPoint + " unmounted\n");
    EXPECT_EQ(machine.mountPointOf("disk2s2"), "");
}

TEST(MachineFileActor, MountsNoEfiPartitionWithoutRoot)
{
    const TestMachine machine;

    const Outcome outcome = machine.diskutil({"mount", "disk2s1"}, false);

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, failedToMount("disk2s1", "not appropriate (kDAReturnNotPermitted)"));
    EXPECT_EQ(machine.text(), sampleMachineText());
}

struct PrivilegeCase {
    const char *name;
    std::vector<std::string> arguments;
    const char *error;
};

class NeedsRoot : public testing::TestWithParam<PrivilegeCase> {};

TEST_P(NeedsRoot, ForEfiPartitionsAndInternalDisks)
{
    const TestMachine machine;
    ASSERT_EQ(machine.diskutil({"mount", "disk2s1"}).status, 0);
    ASSERT_EQ(machine.diskutil({"mount", "disk1s3"}).status, 0);
    const std::string text = machine.text();

    const Outcome refused = machine.diskutil(GetParam().arguments, false);
    const std::string afterwards = machine.text();
    const Outcome done = machine.diskutil(GetParam().arguments, true);

    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors,
              std::string(GetParam().error) +
                  "\nPerhaps the operation is not allowed by the invoking user (kDAReturnNotPrivileged)\n");
    EXPECT_EQ(afterwards, text);
    EXPECT_EQ(done.status, 0) << done.errors;
}

INSTANTIATE_TEST_SUITE_P(
    MachineFileActor, NeedsRoot,
    testing::Values(
        PrivilegeCase{
            "ToUnmountAnEfiPartition", {"unmount", "disk2s1"}, "Volume OPENCORE on disk2s1 failed to unmount"},
        PrivilegeCase{
            "ToForceAnEfiPartition", {"unmount", "force", "disk2s1"}, "Volume OPENCORE on disk2s1 failed to unmount"},
        PrivilegeCase{"ToRenameAnEfiPartition", {"rename", "disk2s1", "X"}, "Volume on disk2s1 failed to rename"},
        PrivilegeCase{"ToUnmountAnInternalVolume", {"unmount", "disk1s3"}, "Volume Spare on disk1s3 failed to unmount"},
        PrivilegeCase{"ToRenameAnInternalVolume", {"rename", "disk1s3", "X"}, "Volume on disk1s3 failed to rename"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(MachineFileActor, NeedsNoRootForWhatIsUnmountedAlready)
{
    const TestMachine machine;

    EXPECT_EQ(machine.diskutil({"unmount", "disk2s1"}, false).status, 0);
}

TEST(MachineFileActor, NeedsNoRootForACardInABuiltInReader)
{
    const TestMachine machine;
    auto json = machine.json();
    json["disks"][1]["isExternal"] = false;
    machine.write(json.dump());

    EXPECT_EQ(machine.diskutil({"rename", "disk2s2", "NEW"}, false).status, 0);
    EXPECT_EQ(machine.diskutil({"unmount", "disk2s2"}, false).status, 0);
}

TEST(MachineFileActor, EjectsADiskWithAMountedEfiPartitionWithoutRoot)
{
    const TestMachine machine;
    ASSERT_EQ(machine.diskutil({"mount", "disk2s1"}).status, 0);

    const Outcome outcome = machine.diskutil({"eject", "disk2"}, false);

    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(machine.json()["disks"].size(), 2U);
}

TEST(MachineFileActor, PrintsNoRawBytesOfWhatKeepsAVolumeBusy)
{
    const TestMachine machine;
    auto json = machine.json();
    json["mounts"][2]["dissenter"] = {{"pid", 7}, {"program", "/bin/\x1B[2J"}};
    json["disks"][2]["partitions"][1]["holder"] = "\x1B[2J";
    machine.write(json.dump());

    EXPECT_THAT(machine.diskutil({"unmount", "disk2s2"}).errors, testing::HasSubstr("PID 7 (/bin/\uFFFD[2J)"));
    EXPECT_THAT(machine.diskutil({"eject", "disk3"}).errors, testing::HasSubstr("in use by \uFFFD[2J"));
}

TEST(MachineFileActor, MountsAnOrdinaryVolumeWithoutRoot)
{
    const TestMachine machine;
    ASSERT_EQ(machine.diskutil({"unmount", "disk2s2"}, false).status, 0);

    const Outcome outcome = machine.diskutil({"mount", "disk2s2"}, false);

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(machine.mountPointOf("disk2s2"), "Volumes/DATA");
}

TEST(MachineFileActor, DoesNotMountAForeignFileSystem)
{
    const TestMachine machine;

    const Outcome outcome = machine.diskutil({"mount", "disk3s1"});

    EXPECT_EQ(outcome.errors, failedToMount("disk3s1", "not supported (kDAReturnUnsupported)"));
}

TEST(MachineFileActor, DoesNotMountAWholeDiskWithATable)
{
    const TestMachine machine;

    const Outcome outcome = machine.diskutil({"mount", "disk2"});

    EXPECT_EQ(outcome.errors, "Volume on disk2 failed to mount\n"
                              "Perhaps the operation is not supported (kDAReturnUnsupported)\n"
                              "If it has a partitioning scheme, use \"diskutil mountDisk\"\n" +
                                  std::string(kTryReadOnly));
}

TEST(MachineFileActor, MountsAnApfsVolume)
{
    const TestMachine machine;

    const Outcome outcome = machine.diskutil({"mount", "disk1s3"});

    EXPECT_EQ(outcome.output, "Volume Spare on disk1s3 mounted\n");
    EXPECT_EQ(machine.mountPointOf("disk1s3"), "Volumes/Spare");
}

TEST(MachineFileActor, NamesADiskThatIsNotThere)
{
    const TestMachine machine;

    const Outcome outcome = machine.diskutil({"mount", "/dev/disk4s1"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "Unable to find disk for /dev/disk4s1\n");
}

TEST(MachineFileActor, RefusesToUnmountABusyVolumeUnlessForced)
{
    const TestMachine machine;
    machine.write(busyMachineText());

    const Outcome refused = machine.diskutil({"unmount", "disk2s2"});
    const std::string mountPoint = machine.mountPointOf("disk2s2");
    const Outcome forced = machine.diskutil({"unmount", "force", "disk2s2"});

    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.errors, "Volume DATA on disk2s2 failed to unmount: dissented by PID 47781 (/usr/bin/tail)\n"
                              "Dissenter parent PPID 1 (/sbin/launchd)\n");
    EXPECT_EQ(mountPoint, "Volumes/DATA");
    EXPECT_EQ(forced.status, 0);
    EXPECT_EQ(machine.mountPointOf("disk2s2"), "");
}

TEST(MachineFileActor, NeverUnmountsTheSystem)
{
    const TestMachine machine;

    const Outcome outcome = machine.diskutil({"unmount", "force", "/"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(machine.mountPointOf("disk1s1"), "/");
}

TEST(MachineFileActor, RenamesAVolumeAndSaysWhatItWrote)
{
    const TestMachine machine;

    const Outcome outcome = machine.diskutil({"rename", "disk2s1", "my efi stick"});

    EXPECT_EQ(outcome.output, "Volume on disk2s1 renamed to MY EFI STIC\n");
    EXPECT_EQ(machine.labelOf("disk2s1"), "MY EFI STIC");
}

TEST(MachineFileActor, RenamesAnApfsVolume)
{
    const TestMachine machine;

    ASSERT_EQ(machine.diskutil({"rename", "Spare", "Other name"}).status, 0);

    EXPECT_EQ(machine.labelOf("disk1s3"), "Other name");
}

TEST(MachineFileActor, RenamesAnApfsVolumeWithAnUnknownKeyCalledVolume)
{
    const TestMachine machine;
    auto json = machine.json();
    json["disks"][0]["partitions"][1]["apfs"]["volumes"][2]["volume"] = 5;
    machine.write(json.dump());

    ASSERT_EQ(machine.diskutil({"rename", "disk1s3", "Other name"}).status, 0);

    EXPECT_EQ(machine.labelOf("disk1s3"), "Other name");
}

TEST(MachineFileActor, LeavesAMountedVolumesFolderAtARename)
{
    const TestMachine machine;

    ASSERT_EQ(machine.diskutil({"rename", "disk2s2", "NEW"}).status, 0);

    EXPECT_EQ(machine.mountPointOf("disk2s2"), "Volumes/DATA");
}

TEST(MachineFileActor, ReplacesANameOfRawBytes)
{
    const TestMachine machine;
    auto json = machine.json();
    auto &volume = json["disks"][1]["partitions"][1]["volume"];
    volume.erase("name");
    volume["nameHex"] = "ff";
    machine.write(json.dump());

    ASSERT_EQ(machine.diskutil({"rename", "disk2s2", "NEW"}).status, 0);

    EXPECT_EQ(machine.labelOf("disk2s2"), "NEW");
}

TEST(MachineFileActor, DoesNotRenameSwap)
{
    const TestMachine machine;

    const Outcome outcome = machine.diskutil({"rename", "disk3s2", "NEW"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(machine.text(), sampleMachineText());
}

TEST(MachineFileActor, WritesNothingToAReadOnlyDisk)
{
    const TestMachine machine;
    auto json = machine.json();
    json["disks"][1]["isReadOnly"] = true;
    machine.write(json.dump());

    EXPECT_EQ(machine.diskutil({"rename", "disk2s2", "NEW"}).errors, "disk2 is read-only\n");
    EXPECT_EQ(machine.diskutil({"eraseVolume", "FAT32", "NEW", "disk2s2"}).errors, "disk2 is read-only\n");
    EXPECT_EQ(machine.diskutil({"eraseDisk", "FAT32", "NEW", "disk2"}).errors, "disk2 is read-only\n");
    EXPECT_EQ(machine.text(), json.dump());
}

TEST(MachineFileActor, RefusesANameThatTwoVolumesBear)
{
    const TestMachine machine;
    ASSERT_EQ(machine.diskutil({"rename", "disk2s1", "EFI"}).status, 0);
    const std::string text = machine.text();

    const Outcome outcome = machine.diskutil({"eraseVolume", "FAT32", "NEW", "EFI"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "EFI is the name of 2 volumes: use an identifier\n");
    EXPECT_EQ(machine.text(), text);
}

TEST(MachineFileActor, TakesAnIdentifierThatTwoVolumesBearAsTheirName)
{
    const TestMachine machine;
    ASSERT_EQ(machine.diskutil({"rename", "disk1s3", "disk2s1"}).status, 0);
    ASSERT_EQ(machine.diskutil({"rename", "disk3s1", "disk2s1"}).status, 0);

    ASSERT_EQ(machine.diskutil({"rename", "disk2s1", "RIGHT"}).status, 0);

    EXPECT_EQ(machine.labelOf("disk2s1"), "RIGHT");
}

TEST(MachineFileActor, EjectsADiskToTheShelf)
{
    const TestMachine machine;
    machine.writeFile("Volumes/DATA/file", "x");

    const Outcome outcome = machine.diskutil({"eject", "disk2"}, false);

    EXPECT_EQ(outcome.output, "Disk disk2 ejected\n");
    const auto json = machine.json();
    EXPECT_EQ(json["disks"].size(), 2U);
    EXPECT_EQ(json["shelf"][1]["identifier"], "disk2");
    EXPECT_EQ(machine.mountPointOf("disk2s2"), "");
    EXPECT_TRUE(machine.hasFile("contents/22222222-0000-4000-8000-000000000002/file"));
}

TEST(MachineFileActor, EjectsTheDiskOfANamedPartition)
{
    const TestMachine machine;

    const Outcome outcome = machine.diskutil({"eject", "/dev/disk2s1"});

    EXPECT_EQ(outcome.output, "Disk /dev/disk2s1 ejected\n");
    EXPECT_EQ(machine.json()["disks"].size(), 2U);
}

TEST(MachineFileActor, DoesNotEjectADiskWithABusyVolume)
{
    const TestMachine machine;
    machine.write(busyMachineText());

    const Outcome outcome = machine.diskutil({"eject", "disk2"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "Unmount of disk2 failed: at least one volume could not be unmounted\n"
                              "Unmount was dissented by PID 47781 (/usr/bin/tail)\n"
                              "Dissenter parent PPID 1 (/sbin/launchd)\n");
    EXPECT_EQ(machine.text(), busyMachineText());
}

TEST(MachineFileActor, DoesNotEjectTheBootDisk)
{
    const TestMachine machine;

    const Outcome outcome = machine.diskutil({"eject", "disk0"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(machine.text(), sampleMachineText());
}

TEST(MachineFileActor, DoesNotEjectADiskThatIsInUse)
{
    const TestMachine machine;

    const Outcome outcome = machine.diskutil({"eject", "disk3"});

    EXPECT_EQ(outcome.errors, "Ejection of disk3 failed: disk3s2 is in use by swap\n");
    EXPECT_EQ(machine.text(), sampleMachineText());
}

} // namespace
} // namespace brindle::tools
