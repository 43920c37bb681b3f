#include "text/Words.h"

#include "text/Utf8.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace brindle::tools {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr std::string_view kEllipsis = "...";

constexpr bool breaksALine(char32_t value)
{
    return value < 0x20 || (value >= 0x7F && value < 0xA0) || value == 0x2028 || value == 0x2029;
}

struct Range {
    char32_t first;
    char32_t last;
};

constexpr std::array kWide{Range{0x1100, 0x115F},   Range{0x2329, 0x232A},   Range{0x2E80, 0x303E},
                           Range{0x3040, 0xA4CF},   Range{0xAC00, 0xD7A3},   Range{0xF900, 0xFAFF},
                           Range{0xFE10, 0xFE19},   Range{0xFE30, 0xFE6F},   Range{0xFF00, 0xFF60},
                           Range{0xFFE0, 0xFFE6},   Range{0x1F300, 0x1F64F}, Range{0x1F900, 0x1F9FF},
                           Range{0x20000, 0x2FFFD}, Range{0x30000, 0x3FFFD}};

std::size_t cellsOf(char32_t value)
{
    const auto holds = [&](const Range &range) { return value >= range.first && value <= range.last; };
    return value >= kWide.front().first && std::ranges::any_of(kWide, holds) ? 2 : 1;
}

} // namespace

std::string printable(std::string_view raw)
{
    std::string text;
    text.reserve(raw.size());
    while (!raw.empty()) {
        const auto codePoint = firstCodePoint(raw);
        const std::size_t length = codePoint ? codePoint->length : 1;
        text += codePoint && !breaksALine(codePoint->value) ? raw.substr(0, length) : kReplacement;
        raw.remove_prefix(length);
    }
    return text;
}

std::size_t cellCount(std::string_view text)
{
    std::size_t cells = 0;
    while (!text.empty()) {
        const CodePoint codePoint = firstCodePoint(text).value_or(CodePoint{});
        cells += cellsOf(codePoint.value);
        text.remove_prefix(codePoint.length);
    }
    return cells;
}

std::string cutToCells(std::string_view text, std::size_t cells)
{
    if (cellCount(text) <= cells)
        return std::string(text);
    const std::string_view ellipsis = kEllipsis.substr(0, cells);
    std::size_t length = 0;
    for (std::size_t used = ellipsis.size(); length < text.size();) {
        const CodePoint codePoint = firstCodePoint(text.substr(length)).value_or(CodePoint{});
        used += cellsOf(codePoint.value);
        if (used > cells)
            break;
        length += codePoint.length;
    }
    return std::string(text.substr(0, length)).append(ellipsis);
}

std::string sizeText(std::uint64_t bytes)
{
    constexpr std::array<std::string_view, 6> kUnits{"KB", "MB", "GB", "TB", "PB", "EB"};
    constexpr double kStep = 1000;
    if (bytes < 1000)
        return fmt::format("{} B", bytes);
    double size = static_cast<double>(bytes) / kStep;
    std::size_t unit = 0;
    for (; size >= kStep && unit + 1 < kUnits.size(); ++unit)
        size /= kStep;
    return fmt::format("{:.1f} {}", size, kUnits[unit]);
}

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string upperCased(std::string_view text)
{
    std::string result(text);
    std::ranges::transform(result, result.begin(), [](char character) {
        return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
    });
    return result;
}

} // namespace brindle::tools
