#include "base/Text.h"

#include <algorithm>
#include <cstdint>

namespace brindle {

std::string lowerCased(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), toLower);
    return result;
}

std::string upperCased(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), toUpper);
    return result;
}

namespace {

std::string_view trimmedOf(std::string_view characters, std::string_view text)
{
    const std::size_t first = text.find_first_not_of(characters);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(characters) - first + 1);
}

} // namespace

std::string_view trimmed(std::string_view text)
{
    return trimmedOf(" \t\r", text);
}

std::string_view trimmedWithNewlines(std::string_view text)
{
    return trimmedOf(" \t\r\n", text);
}

bool contains(std::string_view text, std::string_view word)
{
    return text.find(word) != std::string_view::npos;
}

std::size_t findIgnoringCase(std::string_view text, std::string_view lowerCasedWord)
{
    const auto found = std::search(text.begin(), text.end(), lowerCasedWord.begin(), lowerCasedWord.end(),
                                   [](char in, char wanted) { return toLower(in) == wanted; });
    return found == text.end() && !lowerCasedWord.empty() ? std::string_view::npos
                                                          : static_cast<std::size_t>(found - text.begin());
}

std::string without(std::string_view text, std::string_view word)
{
    std::string result;
    while (true) {
        const std::size_t at = text.find(word);
        result += text.substr(0, at);
        if (at == std::string_view::npos)
            return result;
        text.remove_prefix(at + word.size());
    }
}

bool isUtf8(std::string_view bytes)
{
    // Table 3-7 of the Unicode standard: the second byte's range keeps overlong forms and surrogates out.
    const auto *byte = reinterpret_cast<const unsigned char *>(bytes.data());
    const auto *const end = byte + bytes.size();
    const auto isContinuation = [&](std::ptrdiff_t index, unsigned low = 0x80, unsigned high = 0xBF) {
        return byte + index < end && byte[index] >= low && byte[index] <= high;
    };
    while (byte < end) {
        const unsigned lead = *byte;
        std::ptrdiff_t length = 0;
        if (lead < 0x80)
            length = 1;
        else if (lead >= 0xC2 && lead <= 0xDF && isContinuation(1))
            length = 2;
        else if (lead >= 0xE0 && lead <= 0xEF &&
                 isContinuation(1, lead == 0xE0 ? 0xA0 : 0x80, lead == 0xED ? 0x9F : 0xBF) && isContinuation(2))
            length = 3;
        else if (lead >= 0xF0 && lead <= 0xF4 &&
                 isContinuation(1, lead == 0xF0 ? 0x90 : 0x80, lead == 0xF4 ? 0x8F : 0xBF) && isContinuation(2) &&
                 isContinuation(3))
            length = 4;
        if (length == 0)
            return false;
        byte += length;
    }
    return true;
}

void Lines::Iterator::advance()
{
    if (m_lastLine) {
        m_atEnd = true;
        return;
    }
    const std::size_t newline = m_rest.find('\n');
    m_line = m_rest.substr(0, newline);
    if (newline == std::string_view::npos) {
        m_lastLine = true;
        return;
    }
    m_rest.remove_prefix(newline + 1);
    if (m_line.ends_with('\r'))
        m_line.remove_suffix(1);
}

} // namespace brindle
