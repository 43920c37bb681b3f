#include "detectors/BootloaderDetector.h"

#include "base/BlockOn.h"
#include "support/LogCapture.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <filesystem>
#include <fstream>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace brindle {

void PrintTo(const BootloaderFlags &flags, std::ostream *stream)
{
    *stream << "OpenCore=" << flags.hasOpenCore << " Clover=" << flags.hasClover;
}

namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::IsEmpty;

constexpr BootloaderFlags kNeither;
constexpr BootloaderFlags kOpenCore{.hasOpenCore = true};
constexpr BootloaderFlags kClover{.hasClover = true};
constexpr BootloaderFlags kBoth{.hasOpenCore = true, .hasClover = true};

/// A folder that stands for a mounted EFI partition. Paths that end with a slash are folders, all others files.
class MountedEFI {
public:
    explicit MountedEFI(const std::vector<std::string> &paths = {})
    {
        for (const std::string &path : paths)
            add(path);
    }

    void add(const std::string &path) const
    {
        const fs::path whole = fs::path(mountPoint()) / path;
        fs::create_directories(whole.parent_path());
        if (!path.ends_with('/'))
            std::ofstream(whole) << "x";
    }

    void removeAll() const { fs::remove_all(mountPoint()); }

    [[nodiscard]] std::string mountPoint() const { return m_folder.path().toStdString(); }

private:
    QTemporaryDir m_folder;
};

// --- the files of a partition

struct FilesCase {
    const char *name;
    std::vector<std::string> paths;
    BootloaderFlags flags;
};

class EFIFiles : public testing::TestWithParam<FilesCase> {};

TEST_P(EFIFiles, TellTheBootLoaders)
{
    const LogCapture log;
    const MountedEFI efi(GetParam().paths);

    BootloaderDetector detector;

    const BootloaderFlags flags = blockOn(detector.detectBootloaders("disk0", false, false, true, efi.mountPoint()));

    EXPECT_EQ(flags, GetParam().flags);
    std::vector<std::string> lines{
        "🔍 Bootloader detection for disk0: isBootDisk=false isBootloaderDisk=false efiMounted=true"};
    if (GetParam().flags.hasOpenCore)
        lines.push_back("   ✅ OpenCore confirmed at " + efi.mountPoint() + "/EFI/OC");
    if (GetParam().flags.hasClover)
        lines.push_back("   ✅ Clover confirmed at " + efi.mountPoint() + "/EFI/CLOVER");
    lines.push_back(fmt::format("   📂 File scan — OC: {}, Clover: {}", flags.hasOpenCore, flags.hasClover));
    EXPECT_EQ(log.lines(), lines);
}

INSTANTIATE_TEST_SUITE_P(
    BootloaderDetector, EFIFiles,
    testing::Values(FilesCase{"Nothing", {}, kNeither}, FilesCase{"EmptyOpenCoreFolder", {"EFI/OC/"}, kNeither},
                    FilesCase{"EmptyCloverFolder", {"EFI/CLOVER/"}, kNeither},
                    FilesCase{"OpenCoreWithOtherFiles", {"EFI/OC/Kexts/", "EFI/OC/CLOVERX64.efi"}, kNeither},
                    FilesCase{"CloverWithOtherFiles", {"EFI/CLOVER/OpenCore.efi"}, kNeither},
                    FilesCase{"OpenCoreLoader", {"EFI/OC/OpenCore.efi"}, kOpenCore},
                    FilesCase{"OpenCoreConfigurationAlone", {"EFI/OC/config.plist"}, kOpenCore},
                    FilesCase{"CloverLoader", {"EFI/CLOVER/CLOVERX64.efi"}, kClover},
                    FilesCase{"CloverConfigurationAlone", {"EFI/CLOVER/config.plist"}, kClover},
                    FilesCase{"Both", {"EFI/OC/OpenCore.efi", "EFI/CLOVER/CLOVERX64.efi"}, kBoth},
                    FilesCase{"FolderWithTheNameOfAFile", {"EFI/OC/config.plist/"}, kOpenCore},
                    FilesCase{"OutsideOfTheEFIFolder", {"OC/OpenCore.efi", "CLOVER/config.plist"}, kNeither},
                    FilesCase{"FileWithTheNameOfTheFolder", {"EFI/OC"}, kNeither}),
    [](const auto &row) { return row.param.name; });

TEST(BootloaderDetector, FindsNothingAtAMountPointThatHasGone)
{
    const MountedEFI efi({"EFI/OC/OpenCore.efi"});
    efi.removeAll();

    EXPECT_EQ(blockOn(BootloaderDetector::scanEFIFiles(efi.mountPoint())), kNeither);
}

TEST(BootloaderDetector, PutsTheMountPointInFrontOfThePathAsItIs)
{
    const MountedEFI efi({"a b%20$(c)/EFI/OC/OpenCore.efi"});
    const std::string mountPoint = efi.mountPoint() + "//a b%20$(c)";

    EXPECT_EQ(blockOn(BootloaderDetector::scanEFIFiles(mountPoint)), kOpenCore);
}

// --- one disk

class BootloaderDetectorTest : public testing::Test {
protected:
    struct Disk {
        bool isBootDisk = false;
        bool isBootloaderDisk = false;
        bool efiMounted = false;
        std::optional<std::string> efiMountPoint;
    };

    BootloaderFlags detect(const Disk &disk, const std::string &identifier = "disk0")
    {
        return blockOn(detector.detectBootloaders(identifier, disk.isBootDisk, disk.isBootloaderDisk, disk.efiMounted,
                                                  disk.efiMountPoint));
    }

    static Disk mountedAt(const MountedEFI &efi) { return {.efiMounted = true, .efiMountPoint = efi.mountPoint()}; }

    LogCapture log;
    BootloaderDetector detector;
};

TEST_F(BootloaderDetectorTest, TestsTheFilesOfAMountedPartition)
{
    const MountedEFI efi({"EFI/OC/OpenCore.efi"});

    EXPECT_EQ(detect(mountedAt(efi)), kOpenCore);

    EXPECT_THAT(log.lines(), ElementsAre("🔍 Bootloader detection for disk0: isBootDisk=false isBootloaderDisk=false "
                                         "efiMounted=true",
                                         "   ✅ OpenCore confirmed at " + efi.mountPoint() + "/EFI/OC",
                                         "   📂 File scan — OC: true, Clover: false"));
}

TEST_F(BootloaderDetectorTest, TouchesNoFileForADiskAndMountPointThatItKnows)
{
    const MountedEFI efi({"EFI/CLOVER/config.plist"});
    (void)detect(mountedAt(efi));
    const std::size_t linesBefore = log.lines().size();
    efi.removeAll();

    EXPECT_EQ(detect(mountedAt(efi)), kClover);

    const std::vector<std::string> lines(log.lines().begin() + static_cast<std::ptrdiff_t>(linesBefore),
                                         log.lines().end());
    EXPECT_THAT(lines, ElementsAre("🔍 Bootloader detection for disk0: isBootDisk=false isBootloaderDisk=false "
                                   "efiMounted=true",
                                   "   💾 Bootloader scan cache hit for disk0"));
}

TEST_F(BootloaderDetectorTest, KeepsThatAMountPointHadGone)
{
    const MountedEFI efi;
    efi.removeAll();
    (void)detect(mountedAt(efi));
    efi.add("EFI/OC/OpenCore.efi");

    EXPECT_EQ(detect(mountedAt(efi)), kNeither);

    detector.forgetScans();
    EXPECT_EQ(detect(mountedAt(efi)), kOpenCore);
}

TEST_F(BootloaderDetectorTest, KeepsNothingThatWasBeingReadWhenTheScansWereForgotten)
{
    const MountedEFI efi({"EFI/OC/OpenCore.efi"});
    auto detection = detector.detectBootloaders("disk0", false, false, true, efi.mountPoint());

    detector.forgetScans();

    EXPECT_EQ(blockOn(std::move(detection)), kOpenCore);
    EXPECT_THAT(detector.scanCache, IsEmpty());
}

TEST_F(BootloaderDetectorTest, TellsOfOneDiskAfterTheOther)
{
    const MountedEFI first({"EFI/OC/OpenCore.efi"});
    const MountedEFI second({"EFI/CLOVER/CLOVERX64.efi"});

    auto detectionOfFirst = detector.detectBootloaders("disk0", false, false, true, first.mountPoint());
    auto detectionOfSecond = detector.detectBootloaders("disk1", false, false, true, second.mountPoint());
    (void)blockOn(std::move(detectionOfFirst));
    (void)blockOn(std::move(detectionOfSecond));

    const std::vector<std::string> ofFirst{
        "🔍 Bootloader detection for disk0: isBootDisk=false isBootloaderDisk=false efiMounted=true",
        "   ✅ OpenCore confirmed at " + first.mountPoint() + "/EFI/OC", "   📂 File scan — OC: true, Clover: false"};
    ASSERT_EQ(log.lines().size(), 6U);
    const bool isFirstSooner = log.lines()[0] == ofFirst[0];
    const auto begin = log.lines().begin() + (isFirstSooner ? 0 : 3);
    EXPECT_EQ(std::vector(begin, begin + 3), ofFirst);
}

TEST_F(BootloaderDetectorTest, TestsTheFilesAgainAtANewMountPointAndReplacesTheEntry)
{
    const MountedEFI before({"EFI/OC/OpenCore.efi"});
    const MountedEFI after({"EFI/CLOVER/CLOVERX64.efi"});
    (void)detect(mountedAt(before));

    EXPECT_EQ(detect(mountedAt(after)), kClover);

    ASSERT_EQ(detector.scanCache.size(), 1U);
    const ScanEntry &entry = detector.scanCache.at("disk0");
    EXPECT_EQ(entry.mountPoint, after.mountPoint());
    EXPECT_FALSE(entry.hasOpenCore);
    EXPECT_TRUE(entry.hasClover);
}

TEST_F(BootloaderDetectorTest, TestsTheFilesForEachDiskAtTheSameMountPoint)
{
    const MountedEFI efi({"EFI/OC/OpenCore.efi"});
    (void)detect(mountedAt(efi), "disk0");
    efi.removeAll();

    EXPECT_EQ(detect(mountedAt(efi), "disk1"), kNeither);
    EXPECT_EQ(detector.scanCache.size(), 2U);
}

TEST_F(BootloaderDetectorTest, FallsBackOnTheRunningSystemForAMountedPartitionWithoutAMountPoint)
{
    detector.openCoreVersion = "REL-100";

    EXPECT_EQ(detect({.isBootDisk = true, .efiMounted = true}), kOpenCore);

    EXPECT_THAT(log.lines(), ElementsAre("🔍 Bootloader detection for disk0: isBootDisk=true isBootloaderDisk=false "
                                         "efiMounted=true",
                                         "   ℹ️ Using cached system info — OC: true, Clover: false"));
    EXPECT_THAT(detector.scanCache, IsEmpty());
}

TEST_F(BootloaderDetectorTest, TouchesNoFileAtAMountPointOfAPartitionThatIsNotMounted)
{
    const MountedEFI efi({"EFI/OC/OpenCore.efi"});

    EXPECT_EQ(detect({.efiMountPoint = efi.mountPoint()}), kNeither);
    EXPECT_THAT(detector.scanCache, IsEmpty());
}

TEST_F(BootloaderDetectorTest, CreditsTheBootDiskWhereNoBootloaderDiskIsKnown)
{
    detector.openCoreVersion = "REL-100";

    EXPECT_EQ(detect({.isBootDisk = true}), kOpenCore);
}

TEST_F(BootloaderDetectorTest, DoesNotCreditTheBootDiskWhereTheBootloaderDiskIsAnother)
{
    detector.bootDiskIdentifier = "disk0";
    detector.bootloaderDiskIdentifier = "disk2";
    detector.openCoreVersion = "REL-100";

    EXPECT_EQ(detect({.isBootDisk = true}), kNeither);

    EXPECT_THAT(log.lines(), ElementsAre("🔍 Bootloader detection for disk0: isBootDisk=true isBootloaderDisk=false "
                                         "efiMounted=false",
                                         "   ➖ No bootloader info available for disk0"));
}

TEST_F(BootloaderDetectorTest, CreditsTheBootloaderDisk)
{
    detector.bootloaderDiskIdentifier = "disk0";
    detector.cloverVersion = "5151";

    EXPECT_EQ(detect({.isBootloaderDisk = true}), kClover);

    EXPECT_THAT(log.lines(), ElementsAre("🔍 Bootloader detection for disk0: isBootDisk=false isBootloaderDisk=true "
                                         "efiMounted=false",
                                         "   ℹ️ Using cached system info — OC: false, Clover: true"));
}

TEST_F(BootloaderDetectorTest, GoesByTheFilesOfTheBootloaderDiskEvenAgainstAKnownVersion)
{
    const MountedEFI efi({"EFI/BOOT/BOOTx64.efi"});
    detector.bootloaderDiskIdentifier = "disk0";
    detector.openCoreVersion = "REL-100";
    Disk disk = mountedAt(efi);
    disk.isBootloaderDisk = true;

    EXPECT_EQ(detect(disk), kNeither);
}

TEST_F(BootloaderDetectorTest, ReportsBothBootLoadersWhoseVersionsAreKnown)
{
    detector.openCoreVersion = "";
    detector.cloverVersion = "5151";

    EXPECT_EQ(detect({.isBootloaderDisk = true}), kBoth);
}

TEST_F(BootloaderDetectorTest, ReportsNeitherWhereNoVersionIsKnown)
{
    EXPECT_EQ(detect({.isBootDisk = true, .isBootloaderDisk = true}), kNeither);

    EXPECT_THAT(log.lines(), ElementsAre("🔍 Bootloader detection for disk0: isBootDisk=true isBootloaderDisk=true "
                                         "efiMounted=false",
                                         "   ℹ️ Using cached system info — OC: false, Clover: false"));
}

TEST_F(BootloaderDetectorTest, KnowsNothingOfADiskThatDidNotBoot)
{
    detector.openCoreVersion = "REL-100";
    detector.cloverVersion = "5151";

    EXPECT_EQ(detect({}, "disk3"), kNeither);

    EXPECT_THAT(log.lines(), ElementsAre("🔍 Bootloader detection for disk3: isBootDisk=false isBootloaderDisk=false "
                                         "efiMounted=false",
                                         "   ➖ No bootloader info available for disk3"));
}

} // namespace
} // namespace brindle
