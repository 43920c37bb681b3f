#include "detectors/FilesystemDetector.h"

#include "base/BlockOn.h"
#include "detectors/FilesystemDetectorFixture.h"
#include "support/FakeToolRunner.h"
#include "support/Fixtures.h"
#include "support/Patience.h"

#include <gmock/gmock.h>

#include <string>

namespace brindle {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class FilesystemDetectorTest : public testing::Test {
protected:
    FilesystemFlags detect(std::string mainInfo, std::string section, CancellationToken token = {})
    {
        auto detection = detector.detectFilesystems("disk0", std::move(mainInfo), std::move(section), std::move(token));
        return blockOn(std::move(detection), kPatience);
    }

    LogCapture log;
    FakeToolRunner tools;
    FilesystemDetector detector{tools, ToolPaths::system()};
};

TEST_F(FilesystemDetectorTest, JoinsWhatAllTextsTellAndLogsEachStepInOrder)
{
    tools.answer("/usr/sbin/diskutil info disk0s10", "   File System Personality:   ExFAT\n");
    tools.answer("/usr/sbin/diskutil info disk0s2", "   File System Personality:   NTFS\n");

    const FilesystemFlags flags = detect("   Content (IOContent):   Linux\n", "   1: EFI EFI 209.7 MB disk0s1\n"
                                                                              "   2: Apple_HFS A 1.0 GB disk0s2\n"
                                                                              "   3: Apple_HFS B 1.0 GB disk0s10\n");

    EXPECT_EQ(flags, kMacOS | kWindows | kLinux | kExFAT);
    EXPECT_THAT(
        log.lines(),
        ElementsAre("🔍 Starting comprehensive filesystem detection for disk0", "🔍 Analyzing main disk info for disk0",
                    "   ✅ Linux detected in Content field: linux", "🔍 Analyzing disk list output for disk0",
                    "🔍 Analyzing partition disk0s10", "   ✅ ExFAT detected: exfat", "🔍 Analyzing partition disk0s2",
                    "   ✅ Windows detected: ntfs",
                    "✅ Filesystem detection results for disk0: macOS=true Windows=true Linux=true ExFAT=true"));
}

TEST_F(FilesystemDetectorTest, AsksAboutEveryPartitionButThoseOfTheEFIKindInPlainTextOrder)
{
    (void)detect("", "1: EFI EFI 1 MB disk0s1\n2: Apple_APFS X 1 GB disk0s2\n"
                     "3: EFI ESP 1 MB disk0s3\n4: Apple_HFS Y 1 GB disk0s11\n");

    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil info disk0s11", "/usr/sbin/diskutil info disk0s2"));
}

TEST_F(FilesystemDetectorTest, GoesOnAskingWhenEverythingIsFoundAlready)
{
    const FilesystemFlags flags =
        detect("Content (IOContent): apfs ntfs linux exfat", "1: A B 1 GB disk0s1\n2: A B 1 GB disk0s2\n");

    EXPECT_EQ(flags, kMacOS | kWindows | kLinux | kExFAT);
    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil info disk0s1", "/usr/sbin/diskutil info disk0s2"));
}

TEST_F(FilesystemDetectorTest, ReadsANTFSPartitionThatIsNamedEFI)
{
    tools.answer("/usr/sbin/diskutil info disk0s1", "Type (Bundle): ufsd ext4");

    const FilesystemFlags flags = detect("", "   1: Windows_NTFS EFI 1.0 GB disk0s1\n");

    EXPECT_EQ(flags, kWindows | kLinux);
    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil info disk0s1"));
}

TEST_F(FilesystemDetectorTest, LosesOnlyWhatAPartitionWouldHaveToldWhenItsToolFails)
{
    tools.fail("/usr/sbin/diskutil info disk0s1", Error("CommandError", 1, "no such luck"));
    tools.answer("/usr/sbin/diskutil info disk0s2", "ext4");

    const FilesystemFlags flags = detect("", "1: A B 1 GB disk0s1\n2: A B 1 GB disk0s2\n");

    EXPECT_EQ(flags, kLinux);
    EXPECT_THAT(
        log.lines(),
        ElementsAre("🔍 Starting comprehensive filesystem detection for disk0", "🔍 Analyzing main disk info for disk0",
                    "🔍 Analyzing disk list output for disk0", "🔍 Analyzing partition disk0s2",
                    "   ✅ Linux detected: ext4",
                    "✅ Filesystem detection results for disk0: macOS=false Windows=false Linux=true ExFAT=false"));
}

TEST_F(FilesystemDetectorTest, ReadsTheEmptyTextThatStandsForUnreadableOutput)
{
    tools.answer("/usr/sbin/diskutil info disk0s1", "");

    EXPECT_EQ(detect("", "1: A B 1 GB disk0s1\n"), kNoSystem);
    EXPECT_THAT(log.lines(), Contains("🔍 Analyzing partition disk0s1"));
}

TEST_F(FilesystemDetectorTest, JudgesOnlyTheInfoTextOfAnEmptySection)
{
    EXPECT_EQ(detect("File System Personality: APFS", ""), kMacOS);
    EXPECT_THAT(tools.calls(), IsEmpty());
}

TEST_F(FilesystemDetectorTest, FindsBothSystemsOfADiskWhoseToolFails)
{
    const FilesystemFlags flags =
        detect(fixture("diskutil/info-internal-ssd.txt"), fixture("diskutil/list-two-systems.txt"));

    EXPECT_EQ(flags, kMacOS | kWindows);
    EXPECT_THAT(tools.calls(), ElementsAre("/usr/sbin/diskutil info disk0s2", "/usr/sbin/diskutil info disk0s3",
                                           "/usr/sbin/diskutil info disk0s4", "/usr/sbin/diskutil info disk0s5"));
}

TEST_F(FilesystemDetectorTest, HandsItsTokenToTheTool)
{
    tools.answer("/usr/sbin/diskutil info disk0s1", "ext4");
    tools.hold("/usr/sbin/diskutil info disk0s1");
    const auto token = CancellationToken::cancellable();

    auto detection = detector.detectFilesystems("disk0", "", "1: A B 1 GB disk0s1\n", token);
    token.cancel();

    EXPECT_EQ(blockOn(std::move(detection), kPatience), kNoSystem);
}

} // namespace
} // namespace brindle
