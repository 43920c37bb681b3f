// What was begun is brought to its end, though its caller has lost its patience.

#include "ActingKernel.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <string_view>
#include <vector>

namespace brindle::tools {
namespace {

volatile std::sig_atomic_t terminations = 0;

/// Counts the terminations that this process takes, until its end.
class CountedTerminations {
public:
    CountedTerminations()
    {
        terminations = 0;
        m_before = std::signal(SIGTERM, count);
    }
    CountedTerminations(const CountedTerminations &) = delete;
    CountedTerminations &operator=(const CountedTerminations &) = delete;
    ~CountedTerminations() { std::signal(SIGTERM, m_before); }

private:
    static void count(int)
    {
        terminations = terminations + 1;
        std::signal(SIGTERM, count);
    }

    void (*m_before)(int);
};

/// Is terminated while the kernel is told of new partitions.
class TerminatedKernel : public ActingKernel {
public:
    int addPartition(int disk, const PartitionExtent &extent) override
    {
        std::raise(SIGTERM);
        return ActingKernel::addPartition(disk, extent);
    }
};

struct TerminationCase {
    const char *name;
    const char *program;
    std::vector<std::string_view> words;
};

class HeedsNoTermination : public testing::TestWithParam<TerminationCase> {
protected:
    CountedTerminations m_counted;
    TerminatedKernel m_kernel;
};

TEST_P(HeedsNoTermination, OnceItWrites)
{
    m_kernel.plugStick();
    m_kernel.addProgram(GetParam().program, "kill -TERM $PPID $$; exit 0");

    const Outcome outcome = m_kernel.run(GetParam().words);

    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(terminations, 0);
    std::raise(SIGTERM);
    EXPECT_EQ(terminations, 1) << "heeded again";
}

TEST_P(HeedsNoTermination, ButBeforeItWrites)
{
    m_kernel.plugStick();
    m_kernel.afterLookUp = [] { std::raise(SIGTERM); };

    EXPECT_EQ(m_kernel.run(GetParam().words).status, 0);

    EXPECT_EQ(terminations, 1);
}

TEST_P(HeedsNoTermination, UntilItHasFailed)
{
    m_kernel.plugStick();
    m_kernel.addProgram(GetParam().program, "exit 1");

    EXPECT_EQ(m_kernel.run(GetParam().words).status, 1);

    terminations = 0;
    std::raise(SIGTERM);
    EXPECT_EQ(terminations, 1);
}

INSTANTIATE_TEST_SUITE_P(
    KernelActor, HeedsNoTermination,
    testing::Values(TerminationCase{"EraseVolume", "mkfs.fat", {"eraseVolume", "FAT32", "X", "disk7s2"}},
                    TerminationCase{"EraseDisk", "mkfs.fat", {"eraseDisk", "FAT32", "X", "disk7"}},
                    TerminationCase{"Rename", "fatlabel", {"rename", "disk7s2", "X"}}),
    [](const auto &info) { return std::string(info.param.name); });

} // namespace
} // namespace brindle::tools
