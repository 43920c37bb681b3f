#include "linux-tools/SampleMachine.h"

#include "command/Command.h"
#include "text/DiskutilText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// The sample machine; remembers what it was asked.
class SampleSource : public InventorySource {
public:
    [[nodiscard]] Inventory read(const Scope &scope) override
    {
        scopes.push_back(scope);
        Inventory inventory = sampleMachine();
        inventory.notes = notes;
        if (scope.withSpace)
            inventory.mounts[1].space = Space{.totalBytes = 4096, .usedBytes = 1024, .availableBytes = 3072};
        return inventory;
    }

    [[nodiscard]] std::optional<NvramVariable> nvramVariable(std::string_view name) override
    {
        return name == "boot-args" ? std::optional(NvramVariable{.guid = {}, .name = "boot-args", .value = "-v"})
                                   : std::nullopt;
    }

    std::vector<Scope> scopes;
    std::vector<std::string> notes;
};

class CommandTest : public testing::Test {
protected:
    int run(int (*command)(Context &, Arguments), std::vector<std::string_view> arguments)
    {
        return command(m_context, arguments);
    }

    SampleSource m_source;
    Context m_context{.source = m_source, .out = {}, .err = {}};
};

TEST_F(CommandTest, DiskutilListsAllDisksInOneReading)
{
    EXPECT_EQ(run(runDiskutil, {"list"}), 0);

    EXPECT_EQ(m_context.out, listText(sampleMachine()));
    EXPECT_EQ(m_context.err, "");
    ASSERT_EQ(m_source.scopes.size(), 1U);
    EXPECT_TRUE(m_source.scopes[0].withContents);
    EXPECT_FALSE(m_source.scopes[0].withDetails);
    EXPECT_FALSE(m_source.scopes[0].withSpace);
}

TEST_F(CommandTest, DiskutilListsThePhysicalDisks)
{
    EXPECT_EQ(run(runDiskutil, {"list", "physical"}), 0);

    EXPECT_EQ(m_context.out, listPhysicalText(sampleMachine()));
}

TEST_F(CommandTest, DiskutilListsOneDisk)
{
    EXPECT_EQ(run(runDiskutil, {"list", "/dev/sdb"}), 0);

    EXPECT_THAT(m_context.out, StartsWith("/dev/disk10 (external, physical):\n"));
    EXPECT_EQ(m_source.scopes.at(0).name, "/dev/sdb");
}

TEST_F(CommandTest, DiskutilTellsOneDiskInOneReading)
{
    EXPECT_EQ(run(runDiskutil, {"info", "EFI"}), 0);

    EXPECT_THAT(m_context.out, StartsWith("   Device Identifier:         disk0s1\n"));
    ASSERT_EQ(m_source.scopes.size(), 1U);
    EXPECT_EQ(m_source.scopes[0].name, "EFI");
    EXPECT_TRUE(m_source.scopes[0].withDetails);
    EXPECT_TRUE(m_source.scopes[0].withMounts);
}

TEST_F(CommandTest, DiskutilComplainsAboutAnUnknownDisk)
{
    EXPECT_EQ(run(runDiskutil, {"info", "disk9"}), 1);
    EXPECT_EQ(m_context.err, "Could not find disk: disk9\n");

    m_context.err.clear();
    EXPECT_EQ(run(runDiskutil, {"list", "disk9 "}), 1);
    EXPECT_EQ(m_context.err, "Could not find disk: disk9 \n");
    EXPECT_EQ(m_context.out, "");
}

TEST_F(CommandTest, DiskutilSaysOnStandardErrorWhatIsMissing)
{
    m_source.notes = {"types are\nmissing"};
    for (const std::vector<std::string_view> &line : std::vector<std::vector<std::string_view>>{
             {"list"}, {"list", "physical"}, {"list", "disk10"}, {"info", "disk10"}}) {
        m_context.err.clear();
        EXPECT_EQ(run(runDiskutil, line), 0);
        EXPECT_EQ(m_context.err, "diskutil: types are\uFFFDmissing\n");
    }
    m_context.err.clear();

    EXPECT_EQ(run(runDiskutil, {"info", "/x"}), 1);

    EXPECT_EQ(m_context.err, "Could not find disk: /x\ndiskutil: types are\uFFFDmissing\n");
}

TEST_F(CommandTest, DiskutilReadsNothingForAnEmptyName)
{
    EXPECT_EQ(run(runDiskutil, {"info", ""}), 2);
    EXPECT_EQ(m_context.err, "Usage:  diskutil info DISK\nTells what is known of a disk or partition.\n");
    EXPECT_EQ(run(runDiskutil, {"list", ""}), 2);

    EXPECT_TRUE(m_source.scopes.empty());
    EXPECT_EQ(m_context.out, "");
}

TEST_F(CommandTest, DiskutilComplainsAboutWrongUsage)
{
    EXPECT_EQ(run(runDiskutil, {}), 2);
    EXPECT_EQ(run(runDiskutil, {"info"}), 2);
    EXPECT_EQ(run(runDiskutil, {"info", "disk0", "disk1"}), 2);
    EXPECT_EQ(run(runDiskutil, {"list", "disk0", "disk1"}), 2);
    EXPECT_EQ(run(runDiskutil, {"lst"}), 2);

    EXPECT_THAT(m_context.err, HasSubstr("Usage:  diskutil info DISK\n"));
    EXPECT_THAT(m_context.err, HasSubstr("did not recognize verb \"lst\""));
    EXPECT_EQ(m_context.out, "");
    EXPECT_TRUE(m_source.scopes.empty());
}

TEST_F(CommandTest, DiskutilHelps)
{
    for (const char *word : {"--help", "-h", "help"}) {
        m_context.out.clear();
        EXPECT_EQ(run(runDiskutil, {word}), 0) << word;
        EXPECT_THAT(m_context.out, HasSubstr("list [physical | DISK]")) << word;
    }
    EXPECT_EQ(m_context.err, "");
}

TEST_F(CommandTest, DiskutilHelpsWithAVerb)
{
    const std::vector<std::vector<std::string_view>> lines{
        {"eraseDisk", "--help"}, {"eraseDisk", "-h"}, {"help", "eraseDisk"}, {"--help", "eraseDisk"}};
    for (const auto &line : lines) {
        m_context.out.clear();
        EXPECT_EQ(run(runDiskutil, line), 0);
        EXPECT_EQ(m_context.out, "Usage:  diskutil eraseDisk FORMAT NAME [GPT] DISK\n"
                                 "Makes a new table and file system on a whole disk.\n");
    }
    EXPECT_EQ(m_context.err, "");
    EXPECT_TRUE(m_source.scopes.empty());
}

TEST_F(CommandTest, DiskutilHelpsWithNoVerbThatItDoesNotKnow)
{
    EXPECT_EQ(run(runDiskutil, {"help", "lst"}), 2);

    EXPECT_THAT(m_context.err, HasSubstr("did not recognize verb \"lst\""));
}

TEST_F(CommandTest, DiskutilSaysThatItCannotActYet)
{
    EXPECT_EQ(run(runDiskutil, {"eraseDisk", "FAT32", "X", "GPT", "disk0"}), 1);

    EXPECT_EQ(m_context.err, "diskutil eraseDisk is not supported yet on this system's disks\n");
    EXPECT_TRUE(m_source.scopes.empty());
}

TEST_F(CommandTest, DiskutilTellsTheUsageBeforeItSaysThatItCannotAct)
{
    EXPECT_EQ(run(runDiskutil, {"eraseDisk"}), 2);

    EXPECT_THAT(m_context.err, StartsWith("Usage:  diskutil eraseDisk FORMAT NAME [GPT] DISK\n"));
}

TEST_F(CommandTest, DfTellsTheSpaceInOneReading)
{
    EXPECT_EQ(run(runDf, {"-k"}), 0);

    EXPECT_EQ(m_context.out, "Filesystem   1024-blocks Used Available Capacity iused ifree %iused  Mounted on\n"
                             "/dev/disk0s1           4    1         3      25%     0     0     0%  /boot/efi\n");
    ASSERT_EQ(m_source.scopes.size(), 1U);
    EXPECT_TRUE(m_source.scopes[0].withMounts);
    EXPECT_FALSE(m_source.scopes[0].withContents);
}

TEST_F(CommandTest, DfCountsInHalfKilobytesByItself)
{
    EXPECT_EQ(run(runDf, {}), 0);

    EXPECT_THAT(m_context.out, HasSubstr("512-blocks"));
    EXPECT_THAT(m_context.out, HasSubstr("/dev/disk0s1          8    2         6"));
}

TEST_F(CommandTest, DfComplainsAboutOptionsThatItDoesNotKnow)
{
    EXPECT_EQ(run(runDf, {"-x"}), 2);
    EXPECT_EQ(run(runDf, {"-k", "/"}), 2);
    EXPECT_THAT(m_context.err, StartsWith("Usage:  df [-k]\n"));

    EXPECT_EQ(run(runDf, {"-h", "-k"}), 2);
    for (const char *word : {"--help", "-h"}) {
        m_context.out.clear();
        EXPECT_EQ(run(runDf, {word}), 0) << word;
        EXPECT_THAT(m_context.out, StartsWith("Usage:  df [-k]\n")) << word;
    }
}

TEST_F(CommandTest, NvramPrintsAVariable)
{
    EXPECT_EQ(run(runNvram, {"boot-args"}), 0);

    EXPECT_EQ(m_context.out, "boot-args\t-v\n");
}

TEST_F(CommandTest, NvramComplainsAboutAMissingVariable)
{
    EXPECT_EQ(run(runNvram, {"4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:boot-path"}), 1);

    EXPECT_EQ(m_context.err, "nvram: Error getting variable - '4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:boot-path': "
                             "(iokit/common) data was not found\n");
}

TEST_F(CommandTest, NvramComplainsAboutWrongUsage)
{
    EXPECT_EQ(run(runNvram, {}), 2);
    EXPECT_EQ(run(runNvram, {"-p"}), 2);
    EXPECT_EQ(run(runNvram, {"a", "b"}), 2);
    EXPECT_THAT(m_context.err, StartsWith("Usage:  nvram NAME\n"));

    for (const char *word : {"--help", "-h"}) {
        m_context.out.clear();
        EXPECT_EQ(run(runNvram, {word}), 0) << word;
        EXPECT_THAT(m_context.out, StartsWith("Usage:  nvram NAME\n")) << word;
    }
}

} // namespace
} // namespace brindle::tools
