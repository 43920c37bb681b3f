#include "kernel/acting/TableWriter.h"

#include "linux-tools/kernel/FakeKernel.h"

#include "kernel/BlockProbe.h"
#include "kernel/Files.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include <fcntl.h>
#include <unistd.h>

namespace brindle::tools {
namespace {

constexpr std::uint64_t kMiB = 1024 * 1024;
constexpr std::uint64_t kSize = 300 * kMiB;
constexpr unsigned kSector = 512;
constexpr const char *kLinux = "0FC63DAF-8483-4772-8E79-3D69D8477DE4";

/// A disk in a file of the folder of a fake kernel.
class Disk : public testing::Test {
protected:
    [[nodiscard]] Descriptor blank(const std::string &name)
    {
        m_kernel.writeNode(name, "");
        std::filesystem::resize_file(m_kernel.node(name), kSize);
        return {m_kernel.node(name), O_RDWR};
    }

    FakeKernel m_kernel;
};

std::string read(int disk, std::uint64_t offset, std::uint64_t size)
{
    std::string bytes(size, '\0');
    EXPECT_EQ(::pread(disk, bytes.data(), size, static_cast<off_t>(offset)), static_cast<ssize_t>(size));
    return bytes;
}

void write(int disk, const Piece &piece)
{
    EXPECT_EQ(::pwrite(disk, piece.bytes.data(), piece.bytes.size(), static_cast<off_t>(piece.offsetBytes)),
              static_cast<ssize_t>(piece.bytes.size()));
}

/// The table as who reads the disk sees it.
std::string tableOf(int disk)
{
    const ProbedContents contents = probeContents(disk);
    std::string text = contents.table;
    for (const ProbedEntry &entry : contents.entries)
        text += fmt::format(" {}:{}+{}={}", entry.number, entry.offsetBytes, entry.sizeBytes, entry.type);
    return text;
}

std::vector<NewPartition> manyPartitions(int count)
{
    std::vector<NewPartition> partitions;
    for (int number = 1; number <= count; ++number)
        partitions.push_back({{number, static_cast<std::uint64_t>(number) * kMiB, kMiB}, kLinux});
    return partitions;
}

struct OldCase {
    const char *name;
    void (*fill)(int disk);
};

class AKilledEraser : public Disk, public testing::WithParamInterface<OldCase> {};

TEST_P(AKilledEraser, LeavesTheOldTableOrTheNewOne)
{
    const Descriptor made = blank("made");
    TableWriter(made.get(), kSize, kSector).makeTable(erasedLayout(kSize, kLinux));
    const std::string newTable = tableOf(made.get());
    const auto pieces =
        TableWriter::inSafeOrder(read(made.get(), 0, kMiB), read(made.get(), kSize - kMiB, kMiB), kSize);
    const Descriptor disk = blank("disk");
    GetParam().fill(disk.get());
    const std::string oldTable = tableOf(disk.get());
    std::set<std::string> seen;

    for (const Piece &piece : pieces) {
        seen.insert(tableOf(disk.get()));
        write(disk.get(), piece);
    }

    seen.erase(oldTable);
    seen.erase(newTable);
    EXPECT_EQ(seen, std::set<std::string>());
    EXPECT_EQ(tableOf(disk.get()), newTable);
}

INSTANTIATE_TEST_SUITE_P(
    TableWriter, AKilledEraser,
    testing::Values(OldCase{"WithoutATable", [](int) {}},
                    OldCase{"OfAnMbr",
                            [](int disk) {
                                write(disk, {0, mbrWith({{0x0C, 2048, 4096}, {0x83, 8192, 4096}})});
                            }},
                    OldCase{"OfAGpt", [](int disk) { TableWriter(disk, kSize, kSector).makeTable(manyPartitions(3)); }},
                    OldCase{"OfAGptWithManyPartitions",
                            [](int disk) { TableWriter(disk, kSize, kSector).makeTable(manyPartitions(60)); }}),
    [](const auto &info) { return std::string(info.param.name); });

class TableWriterOnADisk : public Disk {};

TEST_F(TableWriterOnADisk, MakesAnEfiPartitionAndOneOfTheRest)
{
    const Descriptor disk = blank("disk");

    TableWriter(disk.get(), kSize, kSector).makeTable(erasedLayout(kSize, kLinux));

    EXPECT_EQ(tableOf(disk.get()), "gpt 1:1048576+209715200=c12a7328-f81f-11d2-ba4b-00a0c93ec93b "
                                   "2:210763776+102760448=0fc63daf-8483-4772-8e79-3d69d8477de4");
}

TEST_F(TableWriterOnADisk, WipesWhatLayBeforeTheFirstPartition)
{
    const Descriptor disk = blank("disk");
    write(disk.get(), {32769, "CD001 and a boot loader"});

    TableWriter(disk.get(), kSize, kSector).makeTable(erasedLayout(kSize, kLinux));

    EXPECT_EQ(read(disk.get(), 32768, 64), std::string(64, '\0'));
}

TEST_F(TableWriterOnADisk, ChangesTheTypeOfOnePartitionAndNothingElse)
{
    const Descriptor disk = blank("disk");
    TableWriter writer(disk.get(), kSize, kSector);
    writer.makeTable(manyPartitions(3));
    const std::string uuid = probeContents(disk.get()).entries[1].uuid;

    writer.setType(2, "48465300-0000-11AA-AA11-00306543ECAC");

    const ProbedContents contents = probeContents(disk.get());
    ASSERT_EQ(contents.entries.size(), 3);
    EXPECT_EQ(contents.entries[0].type, "0fc63daf-8483-4772-8e79-3d69d8477de4");
    EXPECT_EQ(contents.entries[1].type, "48465300-0000-11aa-aa11-00306543ecac");
    EXPECT_EQ(contents.entries[1].uuid, uuid);
    EXPECT_EQ(contents.entries[2].type, "0fc63daf-8483-4772-8e79-3d69d8477de4");
}

TEST_F(TableWriterOnADisk, ChangesTheTypeInAnMbr)
{
    const Descriptor disk = blank("disk");
    write(disk.get(), {0, mbrWith({{0x0C, 2048, 4096}, {0x83, 8192, 4096}})});

    TableWriter(disk.get(), kSize, kSector).setType(2, "0xaf");

    const ProbedContents contents = probeContents(disk.get());
    ASSERT_EQ(contents.entries.size(), 2);
    EXPECT_EQ(contents.entries[0].type, "0xc");
    EXPECT_EQ(contents.entries[1].type, "0xaf");
}

TEST_F(TableWriterOnADisk, ChangesTheTypeOfALogicalPartitionInItsOwnSectorAlone)
{
    // An extended partition at 8192 with two logical ones: each has a sector of its own, which names the next.
    const Descriptor disk = blank("disk");
    write(disk.get(), {0, mbrWith({{0x0C, 2048, 4096}, {0x05, 8192, 20480}})});
    write(disk.get(), {8192 * kSector, mbrWith({{0x83, 2048, 4096}, {0x05, 8192, 8192}})});
    const std::uint64_t second = (8192 + 8192) * kSector;
    write(disk.get(), {second, mbrWith({{0x83, 2048, 4096}})});
    const std::string before = read(disk.get(), 0, second) + read(disk.get(), second + kSector, kMiB);

    TableWriter(disk.get(), kSize, kSector).setType(6, "0xaf");

    EXPECT_EQ(tableOf(disk.get()),
              "dos 1:1048576+2097152=0xc 2:4194304+10485760=0x5 5:5242880+2097152=0x83 6:9437184+2097152=0xaf");
    EXPECT_EQ(read(disk.get(), 0, second) + read(disk.get(), second + kSector, kMiB), before);
}

} // namespace
} // namespace brindle::tools
