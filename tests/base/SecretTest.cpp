#include "base/Secret.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <fstream>
#include <string>
#include <utility>

#include <sys/mman.h>

namespace brindle {
namespace {

/// Whether the system's table of this process's memory has a line for \a address.
bool isMapped(std::uintptr_t address)
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        std::size_t separator = 0;
        const std::uintptr_t begin = std::stoull(line, &separator, 16);
        const std::uintptr_t end = std::stoull(line.substr(separator + 1), nullptr, 16);
        if (begin <= address && address < end)
            return true;
    }
    return false;
}

/// The figure of a line of the system's account of this process, such as "VmLck:".
std::size_t processFigure(const std::string &label)
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == label) {
            std::size_t figure = 0;
            status >> figure;
            return figure;
        }
    }
    return 0;
}

TEST(Secret, KeepsItsBytes)
{
    Secret secret("open");

    secret.append(" sesame");

    EXPECT_EQ(secret.view(), "open sesame");
    EXPECT_EQ(secret, Secret("open sesame"));
    EXPECT_FALSE(secret == Secret("open"));
}

TEST(Secret, IsEmptyAtFirst)
{
    EXPECT_TRUE(Secret().isEmpty());
    EXPECT_TRUE(Secret("").isEmpty());
    EXPECT_FALSE(Secret("x").isEmpty());
}

TEST(Secret, LeavesNoMemoryBehind)
{
    std::uintptr_t address = 0;
    bool wasMapped = false;

    {
        Secret secret("open sesame");
        const Secret moved = std::move(secret);
        address = reinterpret_cast<std::uintptr_t>(moved.view().data());
        wasMapped = isMapped(address);
    }

    EXPECT_TRUE(wasMapped);
    EXPECT_FALSE(isMapped(address));
}

TEST(Secret, IsKeptOutOfTheSwapSpace)
{
    const std::size_t before = processFigure("VmLck:");
    alignas(4096) static std::array<char, 4096> page;
    mlock(page.data(), page.size());
    if (processFigure("VmLck:") == before)
        GTEST_SKIP() << "this process may lock no memory";
    munlock(page.data(), page.size());

    const Secret secret("open sesame");

    EXPECT_GT(processFigure("VmLck:"), before);
}

} // namespace
} // namespace brindle
