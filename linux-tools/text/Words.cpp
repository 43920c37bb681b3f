#include "text/Words.h"

#include "text/Utf8.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <clocale>
#include <cwchar>

#include <locale.h> // NOLINT: newlocale and uselocale are POSIX

namespace brindle::tools {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr std::string_view kEllipsis = "...";

struct Range {
    char32_t first;
    char32_t last;
};

// General category Cc, Cf without the joiners that emoji and scripts are built with, Zl and Zp of Unicode 15, and the
// blank fillers that show nothing.
constexpr std::array kInvisible{
    Range{0x00, 0x1F},     Range{0x7F, 0x9F},     Range{0xAD, 0xAD},     Range{0x61C, 0x61C},   Range{0x115F, 0x1160},
    Range{0x180E, 0x180E}, Range{0x200B, 0x200B}, Range{0x200E, 0x200F}, Range{0x2028, 0x202E}, Range{0x2060, 0x206F},
    Range{0x3164, 0x3164}, Range{0xFEFF, 0xFEFF}, Range{0xFFA0, 0xFFA0}, Range{0xFFF9, 0xFFFB}, Range{0xE0000, 0xE007F},
};

/// Makes the C library speak of Unicode while it lives.
class UnicodeLocale {
public:
    UnicodeLocale() : m_before(isThere() ? ::uselocale(locale()) : nullptr) {}
    UnicodeLocale(const UnicodeLocale &) = delete;
    UnicodeLocale &operator=(const UnicodeLocale &) = delete;
    ~UnicodeLocale()
    {
        if (m_before)
            ::uselocale(m_before);
    }

    [[nodiscard]] static bool isThere() { return locale() != nullptr; }

private:
    static locale_t locale()
    {
        static const locale_t kLocale = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return kLocale;
    }

    locale_t m_before;
};

std::size_t cellsOf(char32_t character)
{
    constexpr char32_t kFirstOdd = 0x300; // All below take one cell, and need no locale.
    if (character < kFirstOdd || !UnicodeLocale::isThere())
        return 1;
    const UnicodeLocale locale;
    const int cells = ::wcwidth(static_cast<wchar_t>(character));
    return cells < 0 ? 1 : static_cast<std::size_t>(cells); // Below 0 it knows none.
}

} // namespace

bool isInvisible(char32_t character)
{
    return std::ranges::any_of(kInvisible,
                               [&](const Range &range) { return character >= range.first && character <= range.last; });
}

std::string printable(std::string_view raw)
{
    std::string text;
    text.reserve(raw.size());
    while (!raw.empty()) {
        const auto codePoint = firstCodePoint(raw);
        const std::size_t length = codePoint ? codePoint->length : 1;
        text += codePoint && !isInvisible(codePoint->value) ? raw.substr(0, length) : kReplacement;
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
    const auto isBlank = [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte <= 0x20 || byte == 0x7F;
    };
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
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
