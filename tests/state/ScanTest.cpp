#include "state/DiskManagerFixture.h"

#include "assembly/Assembly.h"
#include "base/DefaultsKeys.h"
#include "support/Patience.h"
#include "support/SimulatedMachine.h"

#include <QTemporaryDir>

#include <fmt/format.h>

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

// --- on a simulated machine

TEST(Scan, ListsTheDisksInDisplayOrderWhateverTheirOrderOfCompletion)
{
    SimulatedMachine machine;
    machine.addDisk("disk10");
    machine.addDisk("disk2");
    machine.addDisk("disk1");

    EXPECT_THAT(machine.scan().identifiers(), ElementsAre("disk1", "disk2", "disk10"));
}

TEST(Scan, FillsTheMediaUUIDFromTheFirstEFIPartition)
{
    SimulatedMachine machine;
    machine.addDisk("disk2").withEFI("EFI", "/Volumes/EFI");

    const SimulatedScan scan = machine.scan();

    ASSERT_EQ(scan.disks.size(), 1U);
    EXPECT_EQ(scan.disks[0].mediaUUID, "0E239BC6-F960-3107-89CF-1C97F78BB46B");
    ASSERT_EQ(scan.disks[0].efiPartitions.size(), 1U);
    EXPECT_EQ(scan.disks[0].efiPartitions[0].mountPoint, "/Volumes/EFI");
}

TEST(Scan, LeavesOutADiskWhoseInfoToolFails)
{
    SimulatedMachine machine;
    machine.addDisk("disk1");
    machine.addDisk("disk2").infoFails();

    EXPECT_THAT(machine.scan().identifiers(), ElementsAre("disk1"));
    EXPECT_THAT(machine.log(), Contains("Failed to get info for disk2: Could not find disk: disk2\n"));
}

TEST(Scan, GoesOnWithoutSectionsWhenTheListToolFails)
{
    SimulatedMachine machine;
    machine.addDisk("disk0").withEFI("EFI");
    machine.answer("diskutil", "list", {.standardError = "no", .status = 1});

    const SimulatedScan scan = machine.scan();

    EXPECT_THAT(scan.identifiers(), ElementsAre("disk0"));
    EXPECT_TRUE(scan.disks[0].efiPartitions.empty());
    EXPECT_THAT(machine.log(), Contains("   ✅ diskutil list finished"));
}

/// The most disks whose tools ran at the same time, from the lines that the tools leave.
int mostDisksAtOnce(const std::vector<std::string> &calls)
{
    int running = 0;
    int most = 0;
    for (const std::string &call : calls) {
        running += call.starts_with("start diskutil info") ? 1 : call.starts_with("end diskutil info") ? -1 : 0;
        most = std::max(most, running);
    }
    return most;
}

TEST(Scan, ReadsThreeDisksAtATimeAndNoMore)
{
    SimulatedMachine machine;
    for (int i = 0; i < 9; ++i)
        machine.addDisk("disk" + std::to_string(i));
    for (int i = 0; i < 9; ++i) {
        const std::string identifier = "disk" + std::to_string(i);
        machine.answer("diskutil", "info " + identifier, {.standardOutput = "Whole: Yes\n", .delay = "50"});
    }

    EXPECT_EQ(machine.scan().disks.size(), 9U);

    EXPECT_EQ(mostDisksAtOnce(machine.calls()), 3);
}

// --- what a scan reads

/// A scan of fake tools on a machine with one disk, whose EFI partition is mounted on a real folder.
class ScanOfOneDisk : public DiskManagerFixture {
protected:
    ScanOfOneDisk()
    {
        tools.answer("/usr/sbin/diskutil list physical", "/dev/disk0 (internal, physical):\n");
        tools.answer("/usr/sbin/diskutil list",
                     "/dev/disk0 (internal, physical):\n"
                     "   0:      GUID_partition_scheme                        *500.1 GB   disk0\n"
                     "   1:                        EFI EFI                     209.7 MB   disk0s1\n"
                     "   2:                 Apple_APFS Container disk3         499.9 GB   disk0s2\n");
        tools.answer("/usr/sbin/diskutil info disk0", "   Whole:                     Yes\n"
                                                      "   Device / Media Name:       Drive\n"
                                                      "   Protocol:                  PCI-Express\n");
        tools.answer("/usr/sbin/diskutil info disk0s1", "   Volume Name:               EFI\n"
                                                        "   Mount Point:               " +
                                                            mountPoint() +
                                                            "\n"
                                                            "   Disk / Partition UUID:     UUID-1\n");
        tools.answer("/usr/sbin/diskutil info disk0s2", "   Partition Type:            Apple_APFS\n");
        tools.answer("/bin/df -k", "Filesystem 1024-blocks Used Available Capacity Mounted on\n"
                                   "/dev/disk3s1 1000 10 500 1% /\n"
                                   "/dev/disk3s5 1000 20 500 1% /System/Volumes/Data\n"
                                   "/dev/disk0s1 200 5 195 1% /Volumes/EFI\n");
    }

    [[nodiscard]] std::string mountPoint() const { return efi.path().toStdString(); }

    void addFile(const char *path) const
    {
        const std::filesystem::path file = std::filesystem::path(mountPoint()) / path;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file).put('x');
    }

    /// What the system information finds out from now on.
    void startFrom(const std::string &bootDisk, const std::string &openCoreVersion)
    {
        bootTools.answer("/usr/sbin/diskutil info /", "   Part of Whole:   " + bootDisk + "\n");
        bootTools.answer("/usr/sbin/nvram 4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:opencore-version",
                         "4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:opencore-version\t" + openCoreVersion + "\n");
        blockOn(systemInfo.refreshBootInfo(), kPatience);
    }

    const PhysicalDisk &disk() { return manager().disks().at(0); }

    QTemporaryDir efi;
};

TEST_F(ScanOfOneDisk, LogsEachOfItsSteps)
{
    addFile("EFI/OC/OpenCore.efi");
    manager();
    const std::size_t before = log.lines().size();

    scan();

    EXPECT_THAT(
        std::vector<std::string>(log.lines().begin() + static_cast<std::ptrdiff_t>(before), log.lines().end()),
        ElementsAre(
            "   ➡️ Fetching disk list", "Found 1 physical disks: [\"disk0\"]", "Found 1 disks to process: [\"disk0\"]",
            "   ✅ Disk list fetched: 1 disks", "🔄 Synced bootloader info: boot=? loader=same OC=none Clover=none",
            "   ➡️ Running df -k", "   ✅ df -k finished", "   ➡️ Running diskutil list", "   ✅ diskutil list finished",
            "   ➡️ Processing disks in parallel", "Created disk: Drive (disk0) - Volume: none",
            "🔍 Starting comprehensive filesystem detection for disk0", "🔍 Analyzing main disk info for disk0",
            "🔍 Analyzing disk list output for disk0", "🔍 Analyzing partition disk0s2", "   ✅ macOS detected: apfs",
            "✅ Filesystem detection results for disk0: macOS=true Windows=false Linux=false ExFAT=false",
            "🔍 Bootloader detection for disk0: isBootDisk=false isBootloaderDisk=false efiMounted=true",
            "   ✅ OpenCore confirmed at " + mountPoint() + "/EFI/OC", "   📂 File scan — OC: true, Clover: false",
            "✅ Processed 1 visible disks", "   ✅ Processing disks finished", "✅ Disk scan completed in 0.00s",
            "💾 Persisted disk state"));
}

TEST_F(ScanOfOneDisk, RunsItsToolsInOrderAndTheListsOnce)
{
    scan();

    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil list physical", "/bin/df -k", "/usr/sbin/diskutil list",
                                           "/usr/sbin/diskutil info disk0", "/usr/sbin/diskutil list disk3",
                                           "/usr/sbin/diskutil info disk0s2", "/usr/sbin/diskutil info disk0s1"));
}

TEST_F(ScanOfOneDisk, CountsTheSpaceOfItsContainerAndItsOwnFileSystems)
{
    scan();

    EXPECT_EQ(disk().usedSpaceBytes, 35 * 1024);
    EXPECT_EQ(disk().totalSpaceBytes, 1200 * 1024);
}

TEST_F(ScanOfOneDisk, NamesTheDiskThatTheSystemRunsFrom)
{
    startFrom("disk0", "REL-100-2024-04-01");

    scan();

    EXPECT_TRUE(disk().isBootDisk);
    EXPECT_THAT(log.lines(),
                Contains("🔄 Synced bootloader info: boot=disk0 loader=same OC=REL-100-2024-04-01 Clover=none"));
}

TEST_F(ScanOfOneDisk, JudgesADiskByItsFilesWhateverTheFirmwareSays)
{
    startFrom("disk0", "REL-100-2024-04-01");

    scan();

    EXPECT_FALSE(disk().hasOpenCore);
}

TEST_F(ScanOfOneDisk, CreditsTheBootDiskWithTheFirmwaresLoaderWhileItsPartitionIsNotMounted)
{
    startFrom("disk0", "REL-100-2024-04-01");
    tools.answer("/usr/sbin/diskutil info disk0s1", "   Volume Name:   EFI\n");

    scan();

    EXPECT_TRUE(disk().hasOpenCore);
    EXPECT_FALSE(disk().hasClover);
    EXPECT_THAT(manager().efiStates(), ElementsAre(testing::Pair("disk0", false)));
}

TEST_F(ScanOfOneDisk, TellsTheSyncOnlyWhereSomethingDiffers)
{
    const auto isSync = StartsWith("🔄 Synced bootloader info: ");
    scan();
    scan();
    EXPECT_THAT(log.lines(), Contains(isSync).Times(1));

    startFrom("disk0", "REL-100-2024-04-01");
    scan();
    EXPECT_THAT(log.lines(), Contains(isSync).Times(2));
}

TEST_F(ScanOfOneDisk, TestsTheFilesAnewInEachScan)
{
    scan();
    EXPECT_FALSE(disk().hasOpenCore);

    addFile("EFI/OC/config.plist");
    scan();

    EXPECT_TRUE(disk().hasOpenCore);
    EXPECT_TRUE(manager().efiStates().at("disk0"));
}

TEST_F(ScanOfOneDisk, TakesTheFirstPartitionsUUIDWhereTheDiskHasNone)
{
    scan();
    EXPECT_EQ(disk().mediaUUID, "UUID-1");

    tools.answer("/usr/sbin/diskutil info disk0",
                 "   Whole:   Yes\n   Disk / Partition UUID:   WHOLE\n   Protocol:   PCI-Express\n");
    scan();
    EXPECT_EQ(disk().mediaUUID, "WHOLE");
}

TEST_F(ScanOfOneDisk, GoesByTheFirstPartitionForTheUUIDAndByTheFirstMountedOneForTheFiles)
{
    const QTemporaryDir last;
    std::filesystem::create_directories(std::filesystem::path(last.path().toStdString()) / "EFI/CLOVER/config.plist");
    addFile("EFI/OC/OpenCore.efi");
    tools.answer("/usr/sbin/diskutil list", "/dev/disk0 (internal, physical):\n"
                                            "   1:   EFI A   209.7 MB   disk0s3\n"
                                            "   2:   EFI B   209.7 MB   disk0s1\n"
                                            "   3:   EFI C   209.7 MB   disk0s2\n");
    tools.answer("/usr/sbin/diskutil info disk0s3", "   Disk / Partition UUID:   UUID-3\n");
    tools.answer("/usr/sbin/diskutil info disk0s2", "   Mount Point:   " + last.path().toStdString() + "\n");

    scan();

    EXPECT_EQ(disk().mediaUUID, "UUID-3");
    EXPECT_TRUE(disk().hasOpenCore);
    EXPECT_FALSE(disk().hasClover);
    EXPECT_TRUE(manager().efiStates().at("disk0"));
}

TEST_F(ScanOfOneDisk, AwaitsTheBootInformationOnceAndBeforeTheDiskList)
{
    FakeToolRunner slow;
    SystemInfoDetector unknown(slow, ToolPaths::system());
    DiskManager fresh(surroundings(unknown));
    slow.hold("/usr/sbin/diskutil info /");

    auto first = fresh.startScan(false);
    while (slow.calls().empty())
        QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    EXPECT_THAT(tools.calls(), IsEmpty());
    EXPECT_EQ(log.lines().back(), "   ➡️ Starting system info detection");
    slow.release("/usr/sbin/diskutil info /");
    blockOn(std::move(first), kPatience);
    const std::size_t asked = slow.calls().size();
    blockOn(fresh.startScan(false), kPatience);

    EXPECT_EQ(slow.calls().size(), asked);
    EXPECT_THAT(log.lines(), Contains("   ✅ System info detection finished").Times(1));
}

// --- tools that do not do what they should

/// The command lines of this thread's children, with blanks between their words.
std::vector<std::string> childrensCalls()
{
    std::vector<std::string> calls;
    std::ifstream children(fmt::format("/proc/self/task/{}/children", getpid()));
    for (pid_t child = 0; children >> child;) {
        std::ifstream file(fmt::format("/proc/{}/cmdline", child));
        std::string call;
        for (std::string word; std::getline(file, word, '\0');)
            call += (call.empty() ? "" : " ") + word;
        calls.push_back(call);
    }
    return calls;
}

/// A scan by a clock of its own, which is moved on when for a while only tools called by \a hanging are left: then
/// their time is over.
std::vector<PhysicalDisk> scanPastHangingTools(SimulatedMachine &machine, const std::string &hanging,
                                               bool showsDiskImages)
{
    constexpr int kTurnsOfSilence = 100;
    const LogCapture quiet;
    Platform platform = machine.platform();
    platform.userDefaults->set(DefaultsKeys::kPreferencesInitialized, true); // what is written stays so
    platform.userDefaults->set(DefaultsKeys::kShowDiskImages, showsDiskImages);
    auto ownClock = std::make_unique<ManualClock>();
    ManualClock &clock = *ownClock;
    platform.scheduler = std::move(ownClock);
    Assembly assembly(std::move(platform));
    int silence = 0;

    auto scan = assembly.diskManager().startScan(false);
    while (!scan.isReady()) {
        QCoreApplication::processEvents();
        std::this_thread::sleep_for(1ms);
        const auto calls = childrensCalls();
        const bool onlyHanging = !calls.empty() && std::ranges::all_of(calls, [&](const std::string &call) {
            return call.ends_with(hanging);
        });
        silence = onlyHanging ? silence + 1 : 0;
        if (silence == kTurnsOfSilence) {
            clock.advance(30s);
            silence = 0;
        }
    }
    return assembly.diskManager().disks();
}

/// The disks in a few words: "disk0 'Data' boot OC Clover Windows efi space, disk1".
std::string inWords(const std::vector<PhysicalDisk> &disks)
{
    std::string text;
    for (const PhysicalDisk &disk : disks) {
        text += (text.empty() ? "" : ", ") + disk.identifier;
        text += disk.volumeName ? fmt::format(" '{}'", *disk.volumeName) : "";
        text += disk.isBootDisk ? " boot" : "";
        text += disk.hasOpenCore ? " OC" : "";
        text += disk.hasClover ? " Clover" : "";
        text += disk.hasMacOS ? " macOS" : "";
        text += disk.hasWindows ? " Windows" : "";
        text += disk.efiPartitions.empty() ? "" : disk.efiPartitions[0].mediaUUID ? " efi" : " efi-without-uuid";
        text += disk.totalSpaceBytes ? " space" : "";
    }
    return text;
}

constexpr const char *kOpenCoreVersion = "4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:opencore-version";
constexpr const char *kBootPath = "4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:boot-path";

struct FaultCase {
    const char *step;
    const char *tool;
    const char *arguments;
    const char *left;                    ///< What the scan finds without the tool's answer.
    const char *leftByGarbage = nullptr; ///< Where a readable answer without sense gives something else.
    bool showsDiskImages = false;
    const char *cloverVariable = "Clover.Version"; ///< The one that holds the version.
};

// A machine that started with OpenCore and Clover from disk0, with a Windows partition whose type only its info tells.
// Of disk1 only the info of its partition tells a name. disk2 is the store of the container disk3, disk6 an image.
constexpr FaultCase kFaults[] = {
    {"Nothing", "diskutil", "list nothing",
     "disk0 'Data' boot OC Clover Windows efi space, disk1 'Games', disk2 'Sky' macOS space"},
    {"ListPhysical", "diskutil", "list physical", ""},
    {"InfoOfTheBootVolume", "diskutil", "info /",
     "disk0 'Data' OC Clover Windows efi space, disk1 'Games', disk2 'Sky' macOS space"},
    {"OpenCoreVersion", "nvram", kOpenCoreVersion,
     "disk0 'Data' boot Clover Windows efi space, disk1 'Games', disk2 'Sky' macOS space"},
    {"BootPath", "nvram", kBootPath,
     "disk0 'Data' boot OC Clover Windows efi space, disk1 'Games', disk2 'Sky' macOS space"},
    {"CloverVersion", "nvram", "Clover.Version",
     "disk0 'Data' boot OC Windows efi space, disk1 'Games', disk2 'Sky' macOS space"},
    {"Df", "df", "-k", "disk0 'Data' boot OC Clover Windows efi, disk1 'Games', disk2 'Sky' macOS"},
    {"List", "diskutil", "list", "disk0 boot OC Clover space, disk1, disk2"},
    {"InfoOfTheDisk", "diskutil", "info disk0", "disk1 'Games', disk2 'Sky' macOS space"},
    {"InfoOfTheEFIPartition", "diskutil", "info disk0s1",
     "disk0 'Data' boot OC Clover Windows space, disk1 'Games', disk2 'Sky' macOS space",
     "disk0 'Data' boot OC Clover Windows efi-without-uuid space, disk1 'Games', disk2 'Sky' macOS space"},
    {"InfoOfThePartition", "diskutil", "info disk0s2",
     "disk0 'Data' boot OC Clover efi space, disk1 'Games', disk2 'Sky' macOS space"},

    // The partition that the list gives no name.
    {"InfoOfTheUnnamedPartition", "diskutil", "info disk1s1",
     "disk0 'Data' boot OC Clover Windows efi space, disk1, disk2 'Sky' macOS space"},

    // The names of a container's volumes alone: systems and space are told by the store's section and by df.
    {"ListOfTheContainer", "diskutil", "list disk3",
     "disk0 'Data' boot OC Clover Windows efi space, disk1 'Games', disk2 macOS space"},

    // The later names of Clover's version are asked in turn, and one that fails or has no value is passed over.
    {"FirstCloverName", "nvram", "Clover.Version",
     "disk0 'Data' boot OC Clover Windows efi space, disk1 'Games', disk2 'Sky' macOS space", nullptr, false,
     "Clover.Revision"},
    {"SecondCloverName", "nvram", "clover-version",
     "disk0 'Data' boot OC Clover Windows efi space, disk1 'Games', disk2 'Sky' macOS space", nullptr, false,
     "Clover.Revision"},
    {"LastCloverName", "nvram", "Clover.Revision",
     "disk0 'Data' boot OC Windows efi space, disk1 'Games', disk2 'Sky' macOS space", nullptr, false,
     "Clover.Revision"},

    // With images a list of all disks that fails leaves none at all; one that names no disk leaves the physical ones.
    {"NothingWithImages", "diskutil", "list nothing",
     "disk0 'Data' boot OC Clover Windows efi space, disk1 'Games', disk2 'Sky' macOS space, disk6 'Disc'", nullptr,
     true},
    {"ListForTheImages", "diskutil", "list", "", "disk0 boot OC Clover space, disk1, disk2", true},
    {"InfoOfTheImage", "diskutil", "info disk6",
     "disk0 'Data' boot OC Clover Windows efi space, disk1 'Games', disk2 'Sky' macOS space", nullptr, true},
    {"ListOfTheImage", "diskutil", "list disk6",
     "disk0 'Data' boot OC Clover Windows efi space, disk1 'Games', disk2 'Sky' macOS space", nullptr, true},
};

enum class Fault { Fails, Hangs, IsKilled, PrintsGarbage };

class ScanWithABadTool : public testing::TestWithParam<std::tuple<FaultCase, Fault>> {
protected:
    ScanWithABadTool()
    {
        machine.addDisk("disk0").withEFI("EFI").withPartition("Microsoft Basic Data", "Data", "99.0 GB");
        machine.addDisk("disk1").withPartition("Microsoft Basic Data", "", "99.0 GB");
        machine.addDisk("disk2").withPartition("Apple_APFS", "Container disk3", "99.0 GB");
        machine.addDisk("disk6").diskImage().withPartition("Microsoft Basic Data", "Disc", "1.4 GB");
        machine.answer("diskutil", "info disk1s1", {.standardOutput = "   Volume Name:   Games\n"});
        machine.answer("diskutil", "list disk3", {.standardOutput = "   1:   APFS Volume Sky   9.0 GB   disk3s1\n"});
        machine.answer("diskutil", "info disk0s2", {.standardOutput = "   File System Personality:   NTFS\n"});
        machine.answer("diskutil", "info /", {.standardOutput = "   Part of Whole:   disk0\n"});
        machine.answer("nvram", kOpenCoreVersion,
                       {.standardOutput = std::string(kOpenCoreVersion) + "\tREL-100-2024-04-01\n"});
        machine.answer(
            "nvram", kBootPath,
            {.standardOutput = std::string(kBootPath) + "\tHD(1,GPT,0E239BC6-F960-3107-89CF-1C97F78BB46B)\n"});
        const std::string clover = std::get<FaultCase>(GetParam()).cloverVariable;
        machine.answer("nvram", clover, {.standardOutput = clover + "\t5157\n"});
        machine.answer("df", "-k",
                       {.standardOutput = "/dev/disk0s2 1000 10 990 1% /Volumes/Data\n"
                                          "/dev/disk3s1 1000 10 990 1% /Volumes/Sky\n"});
    }

    static SimulatedAnswer answerOf(Fault fault)
    {
        switch (fault) {
        case Fault::Fails:
            return {.standardOutput = "/dev/disk9\n", .standardError = "no\n", .status = 1};
        case Fault::Hangs:
            return {.delay = "hang"};
        case Fault::IsKilled:
            return {.delay = "die"};
        case Fault::PrintsGarbage:
            return {.standardOutput = std::string("\xff\xfe\0\x1b[31m/dev/\n\xc3(", 17)};
        }
        return {};
    }

    SimulatedMachine machine;
};

TEST_P(ScanWithABadTool, GoesOnWithWhatIsLeft)
{
    const auto &[row, fault] = GetParam();
    machine.answer(row.tool, row.arguments, answerOf(fault));

    const auto disks =
        scanPastHangingTools(machine, fmt::format("/{} {}", row.tool, row.arguments), row.showsDiskImages);

    EXPECT_EQ(inWords(disks), fault == Fault::PrintsGarbage && row.leftByGarbage ? row.leftByGarbage : row.left);
}

std::string nameOf(const testing::TestParamInfo<std::tuple<FaultCase, Fault>> &row)
{
    const char *fault = "";
    switch (std::get<1>(row.param)) {
    case Fault::Fails:
        fault = "Fails";
        break;
    case Fault::Hangs:
        fault = "Hangs";
        break;
    case Fault::IsKilled:
        fault = "IsKilled";
        break;
    case Fault::PrintsGarbage:
        fault = "PrintsGarbage";
        break;
    }
    return std::string(std::get<0>(row.param).step) + fault;
}

INSTANTIATE_TEST_SUITE_P(Scan, ScanWithABadTool,
                         testing::Combine(testing::ValuesIn(kFaults),
                                          testing::Values(Fault::Fails, Fault::Hangs, Fault::IsKilled,
                                                          Fault::PrintsGarbage)),
                         nameOf);

} // namespace
} // namespace brindle
