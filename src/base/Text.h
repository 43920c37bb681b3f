#pragma once

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

namespace brindle {

// The text of the platform's tools is UTF-8, and all that is looked for in it is ASCII: case and digits are ASCII's.

[[nodiscard]] constexpr bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

[[nodiscard]] constexpr char toLower(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

[[nodiscard]] constexpr char toUpper(char character)
{
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

[[nodiscard]] std::string lowerCased(std::string_view text);
[[nodiscard]] std::string upperCased(std::string_view text);

/// Without the blanks, tabs and carriage returns at both ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);

/// Without the newlines at both ends either, for what stands in a text of several lines.
[[nodiscard]] std::string_view trimmedWithNewlines(std::string_view text);

[[nodiscard]] bool contains(std::string_view text, std::string_view word);

/// Position of \a word, which is given in lower case, in \a text without regard to case; npos if it isn't there.
[[nodiscard]] std::size_t findIgnoringCase(std::string_view text, std::string_view lowerCasedWord);

/// \a text with every occurrence of \a word replaced by nothing.
[[nodiscard]] std::string without(std::string_view text, std::string_view word);

/// Whether the bytes are well-formed UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
[[nodiscard]] bool isUtf8(std::string_view bytes);

/// The lines of a text, as a range for a for statement. A newline or a carriage return with a newline ends a line; a
/// text without any is one line, and a text that ends with a newline has an empty last line.
class Lines {
public:
    class Iterator {
    public:
        using difference_type = std::ptrdiff_t;
        using value_type = std::string_view;

        Iterator() = default;
        explicit Iterator(std::string_view text) : m_rest(text), m_atEnd(false) { advance(); }

        std::string_view operator*() const { return m_line; }
        Iterator &operator++()
        {
            advance();
            return *this;
        }
        void operator++(int) { advance(); }
        bool operator==(std::default_sentinel_t) const { return m_atEnd; }

    private:
        void advance();

        std::string_view m_rest;
        std::string_view m_line;
        bool m_lastLine = false;
        bool m_atEnd = true;
    };

    explicit Lines(std::string_view text) : m_text(text) {}

    [[nodiscard]] Iterator begin() const { return Iterator(m_text); }
    [[nodiscard]] std::default_sentinel_t end() const { return {}; }

private:
    std::string_view m_text;
};

} // namespace brindle
