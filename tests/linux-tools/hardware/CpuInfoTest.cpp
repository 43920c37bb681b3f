#include "hardware/CpuInfo.h"

#include <gtest/gtest.h>

namespace brindle::tools {
namespace {

TEST(CpuInfo, CountsCoresNotThreads)
{
    constexpr std::string_view kTwoCoresOfTwoThreads =
        "processor\t: 0\nmodel name\t: A\nphysical id\t: 0\ncore id\t\t: 0\n\n"
        "processor\t: 1\nmodel name\t: A\nphysical id\t: 0\ncore id\t\t: 1\n\n"
        "processor\t: 2\nmodel name\t: A\nphysical id\t: 0\ncore id\t\t: 0\n\n"
        "processor\t: 3\nmodel name\t: A\nphysical id\t: 0\ncore id\t\t: 1\n\n";

    const Processor processor = readCpuInfo(kTwoCoresOfTwoThreads);

    EXPECT_EQ(processor.packages, 1);
    EXPECT_EQ(processor.cores, 2);
}

TEST(CpuInfo, CountsTheCoresOfTwoPackagesThatNumberThemAlike)
{
    constexpr std::string_view kTwoPackages = "processor\t: 0\nphysical id\t: 0\ncore id\t: 0\n\n"
                                              "processor\t: 1\nphysical id\t: 1\ncore id\t: 0\n\n";

    const Processor processor = readCpuInfo(kTwoPackages);

    EXPECT_EQ(processor.packages, 2);
    EXPECT_EQ(processor.cores, 2);
}

TEST(CpuInfo, TakesEachProcessorForACoreWhereNoneAreTold)
{
    const Processor processor =
        readCpuInfo("processor\t: 0\nBogoMIPS\t: 108.00\n\nprocessor\t: 1\nBogoMIPS\t: 108.00\n\n");

    EXPECT_EQ(processor.name, "");
    EXPECT_EQ(processor.packages, 1);
    EXPECT_EQ(processor.cores, 2);
}

TEST(CpuInfo, KnowsNothingFromNothing)
{
    const Processor processor = readCpuInfo("");

    EXPECT_EQ(processor.packages, 0);
    EXPECT_EQ(processor.cores, 0);
}

struct NameCase {
    const char *name;
    const char *modelName;
    const char *shortName;
    std::uint64_t megahertz;
};

class ReadsTheModelName : public testing::TestWithParam<NameCase> {};

TEST_P(ReadsTheModelName, AsNameAndSpeed)
{
    const Processor processor = readCpuInfo(std::string("model name\t: ") + GetParam().modelName + '\n');

    EXPECT_EQ(processor.name, GetParam().shortName);
    EXPECT_EQ(processor.speedMegahertz, GetParam().megahertz);
}

INSTANTIATE_TEST_SUITE_P(
    CpuInfo, ReadsTheModelName,
    testing::Values(
        NameCase{"core", "Intel(R) Core(TM) i7-8700 CPU @ 3.20GHz", "Intel Core i7-8700", 3200},
        NameCase{"xeon", "Intel(R) Xeon(R) CPU E5-2680 v4 @ 2.40GHz", "Intel Xeon E5-2680 v4", 2400},
        NameCase{"celeron", "Intel(R) Celeron(R) M processor          900MHz", "Intel Celeron M processor 900MHz", 0},
        NameCase{"megahertz", "Some CPU @ 900 MHz", "Some", 900},
        NameCase{"ryzen", "AMD Ryzen 7 5800X 8-Core Processor", "AMD Ryzen 7 5800X", 0},
        NameCase{"graphics", "AMD Ryzen 7 5700U with Radeon Graphics", "AMD Ryzen 7 5700U with Radeon Graphics", 0},
        NameCase{"fillersAlone", "CPU Processor", "CPU Processor", 0}, NameCase{"noNumber", "X @ GHz", "X", 0},
        NameCase{"absurdNumber", "X @ 1e999GHz", "X", 0}, NameCase{"hugeNumber", "X @ 99999999999999999999GHz", "X", 0},
        NameCase{"negativeNumber", "X @ -3GHz", "X", 0}, NameCase{"notANumber", "X @ nanGHz", "X", 0}),
    [](const auto &info) { return info.param.name; });

} // namespace
} // namespace brindle::tools
