#include "cli/DisplayText.h"

#include <clocale>
#include <cwchar>

namespace brindle {

namespace {

constexpr char32_t kZeroWidthJoiner = 0x200D;

/// The system's own table of cell widths, whatever the user's locale is.
std::size_t cellsOf(char32_t character)
{
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    const locale_t before = uselocale(utf8);
    const int cells = wcwidth(static_cast<wchar_t>(character));
    uselocale(before);
    return cells < 0 ? 1 : static_cast<std::size_t>(cells);
}

/// Takes the first character off \a text with all that stands on it or is joined to it, and returns their cells.
std::size_t takeJoined(std::string_view &text)
{
    char32_t last = takeCharacter(text);
    std::size_t cells = cellsOf(last);
    while (!text.empty()) {
        std::string_view rest = text;
        const char32_t next = takeCharacter(rest);
        if (cellsOf(next) > 0 && last != kZeroWidthJoiner)
            break;
        cells += cellsOf(next);
        last = next;
        text = rest;
    }
    return cells;
}

} // namespace

std::size_t displayWidth(std::string_view text)
{
    std::size_t width = 0;
    while (!text.empty())
        width += cellsOf(takeCharacter(text));
    return width;
}

std::string elided(std::string_view text, std::size_t width)
{
    if (displayWidth(text) <= width)
        return std::string(text);
    std::string_view rest = text;
    std::size_t kept = 0;
    std::size_t cells = 0;
    while (!rest.empty()) {
        cells += takeJoined(rest);
        if (cells + 1 > width)
            break;
        kept = text.size() - rest.size();
    }
    return width == 0 ? std::string() : std::string(text.substr(0, kept)) + "…";
}

std::string elidedAtStart(std::string_view text, std::size_t width)
{
    std::size_t cells = displayWidth(text);
    if (cells <= width)
        return std::string(text);
    while (!text.empty() && cells + 1 > width)
        cells -= takeJoined(text);
    return width == 0 ? std::string() : "…" + std::string(text);
}

} // namespace brindle
