// The commands that erase, as processes on a copy of the demo's machine, with its sudo and its password.

#include "cli/ComputerFixture.h"
#include "support/FileTree.h"
#include "support/Fixtures.h"
#include "support/Patience.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;

class EraseCommands : public Computer {
protected:
    /// The partitions of a disk as "type name file system".
    [[nodiscard]] std::vector<std::string> partitionsOf(const std::string &identifier) const
    {
        std::vector<std::string> lines;
        const json file = machineFile();
        for (const json &disk : file.at("disks")) {
            if (disk.at("identifier") != identifier)
                continue;
            for (const json &partition : disk.at("partitions")) {
                const json volume = partition.value("volume", json::object());
                std::string name = volume.value("name", "");
                if (partition.contains("apfs"))
                    name = partition.at("apfs").at("volumes").at(0).value("name", "");
                lines.push_back(fmt::format("{} {} {}", partition.at("type").get<std::string>(), name,
                                            volume.value("fileSystem", "")));
            }
        }
        return lines;
    }

    /// Changes a disk of the machine file.
    void edit(const std::string &identifier, const std::function<void(json &disk)> &change) const
    {
        json file = machineFile();
        for (json &disk : file.at("disks")) {
            if (disk.at("identifier") == identifier)
                change(disk);
        }
        writeFile(fs::path(root()) / "machine.json", file.dump(2));
    }

    void unmountAll() const
    {
        json file = machineFile();
        file.at("mounts") = json::array();
        writeFile(fs::path(root()) / "machine.json", file.dump(2));
    }
};

TEST_F(EraseCommands, EraseAnEFIPartition)
{
    const Outcome erase = runThere({"erase-efi", "disk3s1", "--confirm", "OPENCORE"});

    EXPECT_EQ(erase.status, 0) << erase.error;
    EXPECT_EQ(erase.output, "Erasing and reformatting...\n"
                            "The EFI partition (disk3s1) on SanDisk Ultra USB 3.0 has been erased and reformatted as "
                            "FAT32.\n");
    EXPECT_THAT(partitionsOf("disk3"),
                testing::ElementsAre("EFI OPENCORE vfat", "Apple_HFS Install macOS Sonoma hfsplus"));
    EXPECT_THAT(treeOf(fs::path(root()) / "Volumes/OPENCORE"), IsEmpty());
}

struct FormatCase {
    const char *name;
    const char *format;
    const char *label;
    const char *volume; ///< The card's, which has an MBR, afterwards.
    const char *disk;   ///< The new volume of the disk, afterwards.
};

class EraseAs : public EraseCommands, public testing::WithParamInterface<FormatCase> {};

INSTANTIATE_TEST_SUITE_P(The, EraseAs,
                         testing::Values(FormatCase{"ExFAT", "ExFAT", "ExFAT", "Windows_NTFS EOS_DIGITAL exfat",
                                                    "Microsoft Basic Data EOS_DIGITAL exfat"},
                                         FormatCase{"FAT32", "FAT32", "FAT32 (MS-DOS)", "DOS_FAT_32 EOS_DIGITAL vfat",
                                                    "Microsoft Basic Data EOS_DIGITAL vfat"},
                                         FormatCase{"HFS", "JHFS+", "Mac OS Extended (Journaled)",
                                                    "Apple_HFS EOS_DIGITAL hfsplus", "Apple_HFS EOS_DIGITAL hfsplus"},
                                         FormatCase{"APFS", "APFS", "APFS", "Apple_APFS EOS_DIGITAL apfs",
                                                    "Apple_APFS EOS_DIGITAL apfs"}),
                         [](const auto &row) { return row.param.name; });

TEST_P(EraseAs, FormatErasesAVolume)
{
    const Outcome erase =
        runThere({"erase-volume", "disk5", "--format", GetParam().format, "--confirm", "EOS_DIGITAL"});

    EXPECT_EQ(erase.status, 0) << erase.error;
    EXPECT_THAT(erase.output, HasSubstr(fmt::format("Erasing and reformatting as {}...\n", GetParam().label)));
    EXPECT_THAT(erase.output, HasSubstr("The volume on Built In SDXC Reader has been erased and reformatted as "));
    EXPECT_THAT(partitionsOf("disk5"), testing::ElementsAre(GetParam().volume));
}

TEST_P(EraseAs, FormatErasesADisk)
{
    const Outcome erase = runThere({"erase-disk", "disk5", "--format", GetParam().format, "--confirm", "EOS_DIGITAL"});

    EXPECT_EQ(erase.status, 0) << erase.error;
    EXPECT_THAT(erase.output, HasSubstr(fmt::format("Erasing and repartitioning as {}...\n", GetParam().label)));
    EXPECT_THAT(erase.output, HasSubstr("A fresh EFI system partition was also created"));
    EXPECT_THAT(partitionsOf("disk5"), testing::ElementsAre("EFI EFI vfat", GetParam().disk));
}

TEST_F(EraseCommands, EraseADiskWithALongName)
{
    const std::string name = "A Disk Whose Name Is Far Too Long For Any Label Of A File System";
    edit("disk5", [&](json &disk) {
        disk["mediaName"] = name;
        disk["partitions"] = json::array();
    });
    json file = machineFile();
    file["mounts"].erase(file["mounts"].size() - 1);
    writeFile(fs::path(root()) / "machine.json", file.dump(2));

    const Outcome erase = runThere({"erase-disk", "disk5", "--format", "FAT32", "--confirm", name});

    EXPECT_EQ(erase.status, 0) << erase.error;
    EXPECT_THAT(partitionsOf("disk5"), testing::ElementsAre("EFI EFI vfat", "Microsoft Basic Data A DISK WHOS vfat"));
}

TEST_F(EraseCommands, EraseADiskWithoutALabelByItsOwnName)
{
    edit("disk5", [](json &disk) { disk["partitions"] = json::array(); });
    json file = machineFile();
    file["mounts"].erase(file["mounts"].size() - 1);
    writeFile(fs::path(root()) / "machine.json", file.dump(2));

    const Outcome volume =
        runThere({"erase-volume", "disk5", "--format", "ExFAT", "--confirm", "Built In SDXC Reader"});
    const Outcome disk = runThere({"erase-disk", "disk5", "--format", "ExFAT", "--confirm", "Built In SDXC Reader"});

    EXPECT_EQ(volume.status, 1);
    EXPECT_EQ(volume.error, "brindlectl: disk5 has no volume that can be erased alone\n");
    EXPECT_EQ(disk.status, 0) << disk.error;
    EXPECT_EQ(partitionsOf("disk5").size(), 2U);
}

TEST_F(EraseCommands, EraseNothingUnlessTheNameIsExactlyRight)
{
    const json before = machineFile();

    for (const char *name : {"eos_digital", "EOS_DIGITAL ", ""}) {
        const Outcome erase = runThere({"erase-volume", "disk5", "--format", "ExFAT", "--confirm", name});

        EXPECT_EQ(erase.status, 1);
        EXPECT_EQ(erase.error, "brindlectl: That doesn't match \"EOS_DIGITAL\"; nothing was erased\n");
        EXPECT_THAT(erase.output, IsEmpty());
    }
    EXPECT_EQ(machineFile(), before);
}

TEST_F(EraseCommands, NeedTheNameWithoutATerminal)
{
    const json before = machineFile();

    const Outcome erase = runThere({"erase-efi", "disk3s1"});

    EXPECT_EQ(erase.status, 2);
    EXPECT_EQ(erase.error, "brindlectl: Without a terminal the name must be said: --confirm \"OPENCORE\"\n");
    EXPECT_EQ(machineFile(), before);
}

TEST_F(EraseCommands, RefuseWhatTheMenusDoNotOffer)
{
    const json before = machineFile();

    const Outcome boot = runThere({"erase-efi", "disk0s1", "--confirm", "EFI"});
    const Outcome internalDisk = runThere({"erase-disk", "disk2", "--format", "APFS", "--confirm", "Windows"});
    const Outcome internalVolume = runThere({"erase-volume", "disk2", "--format", "APFS", "--confirm", "Windows"});

    EXPECT_EQ(boot.status, 1);
    EXPECT_EQ(boot.error, "brindlectl: disk0s1 lies on the disk that the system runs from, which is not erased\n");
    EXPECT_EQ(internalDisk.status, 1);
    EXPECT_EQ(internalDisk.error, "brindlectl: disk2 is a built-in disk, which is not erased\n");
    EXPECT_EQ(internalVolume.status, 1);
    EXPECT_EQ(machineFile(), before);
}

TEST_F(EraseCommands, NameADiskThatIsNotThere)
{
    EXPECT_EQ(runThere({"erase-efi", "disk9s1", "--confirm", "x"}).status, 3);
    EXPECT_EQ(runThere({"erase-volume", "disk9", "--format", "APFS", "--confirm", "x"}).status, 3);
    const Outcome erase = runThere({"erase-disk", "disk9", "--format", "APFS", "--confirm", "x"});

    EXPECT_EQ(erase.status, 3);
    EXPECT_EQ(erase.error, "brindlectl: There is no disk \"disk9\"\n");
    EXPECT_THAT(erase.output, IsEmpty());
}

TEST_F(EraseCommands, TakeAFormatInLettersOfEitherCase)
{
    const Outcome erase = runThere({"erase-volume", "disk5", "--format", "fAt32", "--confirm", "EOS_DIGITAL"});

    EXPECT_EQ(erase.status, 0) << erase.error;
    EXPECT_THAT(erase.output, HasSubstr("Erasing and reformatting as FAT32 (MS-DOS)...\n"));
    EXPECT_THAT(partitionsOf("disk5"), testing::ElementsAre("DOS_FAT_32 EOS_DIGITAL vfat"));
}

TEST_F(EraseCommands, TakeTheOfferedFormatsAlone)
{
    EXPECT_EQ(run({"erase-disk", "disk5", "--format", "ext4", "--confirm", "x"}).status, 2);
    EXPECT_EQ(run({"erase-volume", "disk5", "--confirm", "x"}).status, 2);
    EXPECT_EQ(run({"erase-efi", "disk5s1", "--format", "FAT32"}).status, 2);
}

TEST_F(EraseCommands, TakeALabelThatReadsAsAnIdentifierForNoPartitionOfAnotherDisk)
{
    edit("disk5", [](json &disk) { disk.at("partitions").at(0).at("volume").at("name") = "disk4s2"; });
    unmountAll();
    const json before = machineFile();

    const Outcome erase = runThere({"erase-volume", "disk5", "--format", "ExFAT", "--confirm", "disk4s2"});
    const Outcome rename = runThere({"rename", "disk5", "OTHER"});

    EXPECT_EQ(erase.status, 1);
    EXPECT_THAT(erase.error, HasSubstr("\"disk4s2\" is on disk4, not on disk5"));
    EXPECT_EQ(rename.status, 1);
    EXPECT_THAT(rename.error, HasSubstr("\"disk4s2\" is on disk4, not on disk5"));
    EXPECT_EQ(machineFile(), before);
}

TEST_F(EraseCommands, GoOnToTheEndWhenTheyAreInterrupted)
{
    QProcess process;
    start(process, {"erase-efi", "disk3s1", "--confirm", "OPENCORE", "--password-stdin"}, root());
    process.write("brindle\n");
    QByteArray output;
    while (!output.contains("Erasing and reformatting...")) {
        ASSERT_TRUE(process.waitForReadyRead(kPatienceMilliseconds));
        output += process.readAllStandardOutput();
    }

    ::kill(static_cast<pid_t>(process.processId()), SIGINT);

    ASSERT_TRUE(process.waitForFinished(kPatienceMilliseconds));
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(process.readAllStandardError().toStdString(),
              "brindlectl: An erase can't be stopped: waiting for the end. Interrupt again to leave at once.\n");
    EXPECT_THAT(process.readAllStandardOutput().toStdString(), HasSubstr("has been erased and reformatted as FAT32."));
}

TEST_F(EraseCommands, GoOnToTheEndWhenTheirTerminalHangsUpTwiceAndNobodyReads)
{
    QProcess process;
    Reader reader(process);
    start(process, {"erase-efi", "disk3s1", "--confirm", "OPENCORE", "--password-stdin"}, root());
    process.write("brindle\n");
    ASSERT_TRUE(process.waitForBytesWritten(kPatienceMilliseconds));
    reader.readUntil("Erasing and reformatting...");
    reader.go();

    for (int i = 0; i < 2; ++i)
        ::kill(static_cast<pid_t>(process.processId()), SIGHUP);

    ASSERT_TRUE(process.waitForFinished(kPatienceMilliseconds));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 0);
}

TEST_F(EraseCommands, EndAtOnceAtTheSecondInterruption)
{
    const fs::path sudo = root() + "/usr/bin/sudo";
    fs::remove(sudo); // a link to the one of all machines
    writeFile(sudo, "#!/bin/sh\nread password\nsleep 20\n");
    fs::permissions(sudo, fs::perms::owner_all);
    QProcess process;
    start(process, {"erase-efi", "disk3s1", "--confirm", "OPENCORE", "--password-stdin"}, root());
    process.write("brindle\n");
    ASSERT_TRUE(process.waitForReadyRead(kPatienceMilliseconds)); // it has begun
    const auto program = static_cast<pid_t>(process.processId());
    ::kill(program, SIGINT);
    QByteArray complaint;
    process.setReadChannel(QProcess::StandardError);
    while (!complaint.contains("Interrupt again")) {
        ASSERT_TRUE(process.waitForReadyRead(kPatienceMilliseconds));
        complaint += process.readAllStandardError();
    }

    ASSERT_EQ(::kill(program, SIGINT), 0);

    ASSERT_TRUE(process.waitForFinished(kPatienceMilliseconds));
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(process.exitCode(), SIGINT);
}

TEST_F(EraseCommands, TellTheReasonOfAFailure)
{
    const Outcome erase = runThere({"erase-efi", "disk3s1", "--confirm", "OPENCORE"}, "wrong");

    EXPECT_EQ(erase.status, 1);
    EXPECT_THAT(erase.error, HasSubstr("brindlectl: The EFI partition on SanDisk Ultra USB 3.0 could not be erased: "));
}

} // namespace
} // namespace brindle
