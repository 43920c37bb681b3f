#include "ActingKernel.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <set>

namespace brindle::tools {
namespace {

namespace fs = std::filesystem;

/// Sticks come, go, and others take their names while commands for any number that ever was are given. A command reads
/// the disks first; in a third of them another stick takes the place just then.
class RandomActs {
public:
    explicit RandomActs(unsigned seed) : m_random(seed)
    {
        m_kernel.afterLookUp = [this] {
            if (pick(3) == 0)
                change();
        };
    }

    void run()
    {
        for (int step = 0; step < 8; ++step) {
            if (pick(2) == 0)
                change();
            else
                act();
        }
    }

    [[nodiscard]] int actsDone() const { return m_done; }

private:
    static constexpr std::array kNames{"sdb", "sdc"};

    unsigned pick(unsigned count) { return std::uniform_int_distribution<unsigned>(0, count - 1)(m_random); }

    void change()
    {
        const unsigned place = pick(kNames.size());
        const std::string name = kNames[place];
        if (m_numbers[place] != 0) {
            m_kernel.unplug(name);
            m_numbers[place] = 0;
        }
        if (pick(4) == 0)
            return;
        m_numbers[place] = ++m_last;
        const int minor = static_cast<int>(16 * (place + 1));
        m_kernel.plug(name, minor, m_last);
        m_kernel.setRemovable(name);
        m_kernel.addPartition(name, minor + 1, 1, kDataGuid, {"ID_FS_TYPE=ext4", "ID_FS_LABEL_ENC=SAME"});
    }

    void act()
    {
        const std::uint64_t wanted = 1 + pick(static_cast<unsigned>(m_last + 1));
        const std::string disk = fmt::format("disk{}", wanted);
        const std::string partition = disk + "s1";
        const unsigned kind = pick(32); // A program takes longer to run than all the rest.
        if (kind == 0) {
            tell(wanted, {"rename", partition, "X"});
        } else if (kind == 1) {
            tell(wanted, {"eraseVolume", "ExFAT", "X", partition});
        } else if (kind < 10) {
            tell(wanted, {"eject", disk});
        } else {
            tell(wanted, {"mount", partition});
            tell(wanted, {"unmount", partition});
        }
    }

    void tell(std::uint64_t wanted, const std::vector<std::string_view> &words)
    {
        m_kernel.mounted.clear();
        m_kernel.touched.clear();
        const std::size_t callsBefore = m_kernel.called().size();
        (void)m_kernel.run(words);
        expectOnly(wanted, callsBefore);
    }

    void expectOnly(std::uint64_t wanted, std::size_t callsBefore)
    {
        for (const MountCall &call : m_kernel.mounted)
            expect(wanted, fs::path(call.source).filename());
        for (const std::uint64_t touched : m_kernel.touched) {
            EXPECT_EQ(touched, wanted);
            ++m_done;
        }
        const auto calls = m_kernel.called();
        for (std::size_t index = callsBefore; index < calls.size(); ++index) {
            for (const char *name : kNames) {
                if (calls[index].find(name) != std::string::npos)
                    expect(wanted, name);
            }
        }
    }

    void expect(std::uint64_t wanted, const std::string &node)
    {
        const auto place = static_cast<std::size_t>(node.starts_with("sdc"));
        EXPECT_EQ(m_numbers[place], wanted);
        ++m_done;
    }

    ActingKernel m_kernel;
    std::mt19937 m_random;
    std::array<std::uint64_t, 2> m_numbers{}; // Of what is plugged now; 0 for nothing.
    std::uint64_t m_last = 0;
    int m_done = 0;
};

/// As many as BRINDLE_RANDOM_ACTS says, for long runs.
unsigned sequences()
{
    const char *const wanted = std::getenv("BRINDLE_RANDOM_ACTS");
    return wanted ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 10)) : 200;
}

TEST(RandomActs, NeverReachAnotherDiskThanTheOneThatWasNamed)
{
    int done = 0;
    for (unsigned seed = 0; seed < sequences() && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        RandomActs acts(seed);
        acts.run();
        done += acts.actsDone();
    }

    EXPECT_GT(done, static_cast<int>(sequences() / 4)) << "hardly anything was acted on";
}

} // namespace
} // namespace brindle::tools
