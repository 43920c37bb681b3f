#include "text/Utf8.h"

#include <algorithm>
#include <array>

namespace brindle::tools {
namespace {

struct Form {
    unsigned char mask;
    unsigned char lead;
    std::size_t length;
    char32_t least; ///< A smaller value would be an overlong form.
};

constexpr std::array kForms{Form{0x80, 0x00, 1, 0x0}, Form{0xE0, 0xC0, 2, 0x80}, Form{0xF0, 0xE0, 3, 0x800},
                            Form{0xF8, 0xF0, 4, 0x10000}};

constexpr unsigned char byteAt(std::string_view text, std::size_t index)
{
    return static_cast<unsigned char>(text[index]);
}

} // namespace

std::optional<CodePoint> firstCodePoint(std::string_view text)
{
    const unsigned char lead = byteAt(text, 0);
    const auto form =
        std::ranges::find_if(kForms, [&](const Form &candidate) { return (lead & candidate.mask) == candidate.lead; });
    if (form == kForms.end() || text.size() < form->length)
        return std::nullopt;
    char32_t value = lead & static_cast<unsigned char>(~form->mask);
    for (std::size_t index = 1; index < form->length; ++index) {
        if ((byteAt(text, index) & 0xC0) != 0x80)
            return std::nullopt;
        value = (value << 6) | (byteAt(text, index) & 0x3F);
    }
    const bool isSurrogate = value >= 0xD800 && value <= 0xDFFF;
    if (value < form->least || value > 0x10FFFF || isSurrogate)
        return std::nullopt;
    return CodePoint{value, form->length};
}

} // namespace brindle::tools
