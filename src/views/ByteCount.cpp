#include "views/ByteCount.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>
#include <string_view>

namespace brindle {

namespace {

struct Unit {
    std::string_view name;
    double bytes;
    double steps; ///< Into which one is divided at most: 10 for one digit behind the point.
};

constexpr auto kUnits =
    std::to_array<Unit>({{"B", 1, 1}, {"KB", 1e3, 1}, {"MB", 1e6, 10}, {"GB", 1e9, 100}, {"TB", 1e12, 100}});
constexpr std::size_t kFineUnits = 2; // the first ones

double rounded(std::int64_t bytes, const Unit &unit)
{
    return std::round(static_cast<double>(bytes) / unit.bytes * unit.steps) / unit.steps;
}

/// In the first of \a units that doesn't take more than three digits for it; the last one takes all.
std::string countIn(std::span<const Unit> units, std::int64_t bytes)
{
    const auto unit = std::find_if(units.begin(), units.end() - 1,
                                   [&](const Unit &smaller) { return rounded(bytes, smaller) < 1000; });
    return fmt::format("{} {}", rounded(bytes, *unit), unit->name);
}

} // namespace

std::string byteCount(std::int64_t bytes)
{
    return countIn(std::span(kUnits).subspan(kFineUnits), bytes);
}

std::string fineByteCount(std::int64_t bytes)
{
    return countIn(kUnits, bytes);
}

} // namespace brindle
