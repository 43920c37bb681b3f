#include "shell/WindowHeight.h"

#include <algorithm>

namespace brindle {

namespace {

constexpr double kShareOfScreen = 0.9;
constexpr double kLimitWithoutScreen = 900;
constexpr double kMinimum = 150;

} // namespace

double windowHeight(double contentHeight, std::optional<double> visibleScreenHeight)
{
    const double limit = visibleScreenHeight ? kShareOfScreen * *visibleScreenHeight : kLimitWithoutScreen;
    return std::max(std::min(contentHeight, limit), kMinimum);
}

} // namespace brindle
