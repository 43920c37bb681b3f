#include "base/VisibleText.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace brindle {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

struct Range {
    char32_t first;
    char32_t last;
};

// Of Unicode 15: the general categories Cc, Cf, Zl and Zp, and the marks and fillers that show nothing (U+034F, U+115F,
// U+1160, U+17B4, U+17B5, U+3164, U+FFA0). Left out are the joiners U+200C and U+200D, which emoji and scripts are
// built with. The tags U+E0020 to U+E007F are in: three flags are built with them, and whole hidden sentences.
constexpr std::array kInvisible{
    Range{0x00, 0x1F},       Range{0x7F, 0x9F},       Range{0xAD, 0xAD},       Range{0x34F, 0x34F},
    Range{0x600, 0x605},     Range{0x61C, 0x61C},     Range{0x6DD, 0x6DD},     Range{0x70F, 0x70F},
    Range{0x890, 0x891},     Range{0x8E2, 0x8E2},     Range{0x115F, 0x1160},   Range{0x17B4, 0x17B5},
    Range{0x180E, 0x180E},   Range{0x200B, 0x200B},   Range{0x200E, 0x200F},   Range{0x2028, 0x202E},
    Range{0x2060, 0x206F},   Range{0x3164, 0x3164},   Range{0xFEFF, 0xFEFF},   Range{0xFFA0, 0xFFA0},
    Range{0xFFF9, 0xFFFB},   Range{0x110BD, 0x110BD}, Range{0x110CD, 0x110CD}, Range{0x13430, 0x1343F},
    Range{0x1BCA0, 0x1BCA3}, Range{0x1D173, 0x1D17A}, Range{0xE0000, 0xE007F},
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

std::string visibleLines(std::string_view text)
{
    text = text.substr(0, text.find_last_not_of("\r\n") + 1);
    std::string result;
    for (const std::string_view line : Lines(text))
        result += visibleText(line) + '\n';
    result.pop_back();
    return result;
}

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

} // namespace brindle
