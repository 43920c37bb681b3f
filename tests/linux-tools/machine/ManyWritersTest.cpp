#include "TestMachine.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <future>

namespace brindle::tools {
namespace {

constexpr int kRenames = 25;
constexpr int kRenamesWhileReading = 10;

/// A machine with a disk of 2 * kRenames volumes, disk2s1 and so on.
void writeManyVolumes(const TestMachine &machine)
{
    auto json = machine.json();
    auto &partitions = json["disks"][1]["partitions"];
    const auto first = partitions[0];
    partitions.clear();
    for (int number = 1; number <= 2 * kRenames; ++number) {
        auto partition = first;
        partition["identifier"] = fmt::format("disk2s{}", number);
        partition["type"] = "Microsoft Basic Data"; // which needs no root
        partition["uuid"] = fmt::format("UUID-{}", number);
        partitions.push_back(partition);
    }
    json["mounts"].erase(2);
    machine.write(json.dump(2));
}

/// Renames disk2s1, disk2s2, ... one after the other, each by a process of its own.
int renameFrom(const std::string &diskutil, int first, int count)
{
    int failed = 0;
    for (int number = first; number < first + count; ++number)
        failed += runProgram({diskutil, "rename", fmt::format("disk2s{}", number), fmt::format("N{}", number)}).status;
    return failed;
}

TEST(ManyWriters, LoseNothingOfEachOther)
{
    const TestMachine machine;
    writeManyVolumes(machine);
    machine.install("usr/sbin/diskutil", DISKUTIL_TOOL);
    const std::string diskutil = (machine.root() / "usr/sbin/diskutil").string();

    auto other = std::async(std::launch::async, renameFrom, diskutil, 1, kRenames);
    const int failed = renameFrom(diskutil, 1 + kRenames, kRenames);

    EXPECT_EQ(other.get() + failed, 0);
    for (int number = 1; number <= 2 * kRenames; ++number)
        EXPECT_EQ(machine.labelOf(fmt::format("disk2s{}", number)), fmt::format("N{}", number));
}

TEST(ManyWriters, LetAReaderSeeWholeFilesOnly)
{
    const TestMachine machine;
    writeManyVolumes(machine);
    machine.install("usr/sbin/diskutil", DISKUTIL_TOOL);
    const std::string diskutil = (machine.root() / "usr/sbin/diskutil").string();

    auto writer = std::async(std::launch::async, renameFrom, diskutil, 1, kRenamesWhileReading);
    int readings = 0;
    while (writer.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
        EXPECT_EQ(machine.file().read().inventory.disks.size(), 3U);
        ++readings;
    }

    EXPECT_EQ(writer.get(), 0);
    EXPECT_GT(readings, 0);
}

} // namespace
} // namespace brindle::tools
