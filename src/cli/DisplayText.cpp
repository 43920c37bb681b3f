#include "cli/DisplayText.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <clocale>
#include <cwchar>

#include <algorithm>
#include <array>
#include <cstdint>

namespace brindle {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

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

bool isInvisible(char32_t character)
{
    return std::any_of(kInvisible.begin(), kInvisible.end(),
                       [&](const Range &range) { return character >= range.first && character <= range.last; });
}

std::size_t sequenceLength(unsigned char lead)
{
    if (lead < 0x80)
        return 1;
    if (lead >= 0xF0)
        return 4;
    return lead >= 0xE0 ? 3 : 2;
}

/// Takes the first character off \a text; U+FFFD for a byte that begins none.
char32_t takeCharacter(std::string_view &text)
{
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = sequenceLength(lead);
    const std::string_view sequence = text.substr(0, length);
    if (!isUtf8(sequence)) {
        text.remove_prefix(1);
        return kReplacement;
    }
    text.remove_prefix(length);
    char32_t character = length == 1 ? lead : lead & (0x7FU >> length);
    for (const char next : sequence.substr(1))
        character = character << 6 | (static_cast<unsigned char>(next) & 0x3FU);
    return character;
}

/// The system's own table of cell widths, whatever the user's locale is.
std::size_t cellsOf(char32_t character)
{
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    const locale_t before = uselocale(utf8);
    const int cells = wcwidth(static_cast<wchar_t>(character));
    uselocale(before);
    return cells < 0 ? 1 : static_cast<std::size_t>(cells);
}

} // namespace

std::string visibleText(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const std::string_view before = text;
        const char32_t character = takeCharacter(text);
        if (character == kReplacement)
            result += "\uFFFD";
        else if (isInvisible(character))
            result += fmt::format("<U+{:04X}>", static_cast<std::uint32_t>(character));
        else
            result += before.substr(0, before.size() - text.size());
    }
    return result;
}

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
        cells += cellsOf(takeCharacter(rest));
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
        cells -= cellsOf(takeCharacter(text));
    return width == 0 ? std::string() : "…" + std::string(text);
}

} // namespace brindle
