#include "base/NaturalOrder.h"

#include "base/Text.h"

#include <algorithm>
#include <compare>

namespace brindle {

namespace {

std::string_view takeDigits(std::string_view &text)
{
    const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
    const auto length = static_cast<std::size_t>(end - text.begin());
    std::string_view digits = text.substr(0, length);
    text.remove_prefix(length);
    while (digits.starts_with('0'))
        digits.remove_prefix(1);
    return digits;
}

std::weak_ordering compareNumbers(std::string_view left, std::string_view right)
{
    if (left.size() != right.size())
        return left.size() <=> right.size();
    return left <=> right;
}

std::weak_ordering compareNaturally(std::string_view left, std::string_view right)
{
    while (!left.empty() && !right.empty()) {
        std::weak_ordering order = std::weak_ordering::equivalent;
        if (isDigit(left.front()) && isDigit(right.front())) {
            order = compareNumbers(takeDigits(left), takeDigits(right));
        } else {
            order = toLower(left.front()) <=> toLower(right.front());
            left.remove_prefix(1);
            right.remove_prefix(1);
        }
        if (order != 0)
            return order;
    }
    return left.size() <=> right.size();
}

} // namespace

bool naturallyLess(std::string_view left, std::string_view right)
{
    const std::weak_ordering order = compareNaturally(left, right);
    return order != 0 ? order < 0 : left < right;
}

} // namespace brindle
