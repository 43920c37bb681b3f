#include "views/ByteCount.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace brindle {
namespace {

struct ByteCountCase {
    const char *name;
    std::int64_t bytes;
    const char *text;
};

class CountsBytes : public testing::TestWithParam<ByteCountCase> {};

TEST_P(CountsBytes, InDecimalUnits)
{
    EXPECT_EQ(byteCount(GetParam().bytes), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(ByteCount, CountsBytes,
                         testing::Values(ByteCountCase{"Zero", 0, "0 MB"},
                                         ByteCountCase{"TooLittleToTell", 49'999, "0 MB"},
                                         ByteCountCase{"BelowOneMB", 512'000, "0.5 MB"},
                                         ByteCountCase{"MBWithOneDigit", 209'715'200, "209.7 MB"},
                                         ByteCountCase{"WholeMB", 16'000'000, "16 MB"},
                                         ByteCountCase{"LastOfMB", 999'949'999, "999.9 MB"},
                                         ByteCountCase{"RoundedUpToGB", 999'950'000, "1 GB"},
                                         ByteCountCase{"GBWithTwoDigits", 494'384'795'648, "494.38 GB"},
                                         ByteCountCase{"GBWithAZeroAtTheEnd", 500'100'000'000, "500.1 GB"},
                                         ByteCountCase{"GBWithAZeroInside", 500'060'000'000, "500.06 GB"},
                                         ByteCountCase{"WholeGBKeepTheirZeros", 100'000'000'000, "100 GB"},
                                         ByteCountCase{"LastOfGB", 999'994'999'999, "999.99 GB"},
                                         ByteCountCase{"RoundedUpToTB", 999'995'000'000, "1 TB"},
                                         ByteCountCase{"TBWithTwoDigits", 18'000'207'937'536, "18 TB"},
                                         ByteCountCase{"MoreThanAThousandTB", 1'234'560'000'000'000, "1234.56 TB"},
                                         ByteCountCase{"TheMost", INT64_MAX, "9223372.04 TB"}),
                         [](const auto &row) { return row.param.name; });

class CountsFewBytes : public testing::TestWithParam<ByteCountCase> {};

TEST_P(CountsFewBytes, InSmallerUnits)
{
    EXPECT_EQ(fineByteCount(GetParam().bytes), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(ByteCount, CountsFewBytes,
                         testing::Values(ByteCountCase{"None", 0, "0 B"}, ByteCountCase{"LastOfB", 999, "999 B"},
                                         ByteCountCase{"FirstOfKB", 1000, "1 KB"},
                                         ByteCountCase{"WholeKB", 12'345, "12 KB"},
                                         ByteCountCase{"LastOfKB", 999'499, "999 KB"},
                                         ByteCountCase{"RoundedUpToMB", 999'500, "1 MB"},
                                         ByteCountCase{"MB", 209'715'200, "209.7 MB"}),
                         [](const auto &row) { return row.param.name; });

} // namespace
} // namespace brindle
