#include "views/ByteCount.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace brindle {

namespace {

struct Unit {
    std::string_view name;
    double bytes;
    double steps; ///< Into which one is divided at most: 10 for one digit behind the point.
};

constexpr auto kUnits = std::to_array<Unit>({{"MB", 1e6, 10}, {"GB", 1e9, 100}, {"TB", 1e12, 100}});

double rounded(std::int64_t bytes, const Unit &unit)
{
    return std::round(static_cast<double>(bytes) / unit.bytes * unit.steps) / unit.steps;
}

} // namespace

std::string byteCount(std::int64_t bytes)
{
    // The greatest unit takes all that is too much for the others.
    const auto *const unit = std::find_if(kUnits.begin(), kUnits.end() - 1,
                                          [&](const Unit &smaller) { return rounded(bytes, smaller) < 1000; });
    return fmt::format("{} {}", rounded(bytes, *unit), unit->name);
}

} // namespace brindle
