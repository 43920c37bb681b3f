#include "machine/JsonPositions.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <set>
#include <vector>

namespace brindle::tools {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kDeepest = 64;
constexpr std::size_t kLongestToken = 40;

/// Walks a text for the parser and counts the newlines that it took.
class CountingIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char *;
    using reference = const char &;

    CountingIterator(const char *at, std::size_t *line) : m_at(at), m_line(line) {}

    reference operator*() const { return *m_at; }
    CountingIterator &operator++()
    {
        if (*m_at++ == '\n')
            ++*m_line;
        return *this;
    }
    CountingIterator operator++(int)
    {
        const CountingIterator before = *this;
        ++*this;
        return before;
    }
    bool operator==(const CountingIterator &other) const { return m_at == other.m_at; }

private:
    const char *m_at;
    std::size_t *m_line;
};

/// Hears the parser's events and notes the line of each value.
class Noter {
public:
    using number_integer_t = Json::number_integer_t;
    using number_unsigned_t = Json::number_unsigned_t;
    using number_float_t = Json::number_float_t;
    using string_t = Json::string_t;
    using binary_t = Json::binary_t;

    Noter(const std::size_t &line, std::unordered_map<std::string, std::size_t> &lines) : m_line(line), m_lines(lines)
    {
    }

    bool null() { return scalar(); }
    bool boolean(bool) { return scalar(); }
    bool number_integer(number_integer_t) { return scalar(); }
    bool number_unsigned(number_unsigned_t) { return scalar(); }
    bool number_float(number_float_t, const string_t &) { return scalar(); }
    bool string(string_t &) { return scalar(); }
    bool binary(binary_t &) { return scalar(); }
    bool start_object(std::size_t) { return open(false); }
    bool end_object() { return close(); }
    bool start_array(std::size_t) { return open(true); }
    bool end_array() { return close(); }

    bool key(string_t &key)
    {
        Level &level = m_levels.back();
        level.key = key;
        level.keyLine = m_line;
        level.isAwaited = true;
        if (!level.keys.insert(key).second)
            throw JsonSyntaxError(m_line, fmt::format("{}: the key stands twice", path()));
        return true;
    }

    bool parse_error(std::size_t, const std::string &token, const Json::exception &)
    {
        const std::string at = placeOfError();
        const std::string place = at.empty() ? at : at + ": ";
        throw JsonSyntaxError(m_line, fmt::format("{}not JSON at \"{}\"", place, token.substr(0, kLongestToken)));
    }

private:
    struct Level {
        std::string path;
        bool isArray = false;
        bool isAwaited = false; ///< The key's value hasn't been read yet.
        std::size_t index = 0;
        std::string key;
        std::size_t keyLine = 0;
        std::set<std::string> keys;
    };

    [[nodiscard]] std::string path() const
    {
        if (m_levels.empty())
            return {};
        const Level &level = m_levels.back();
        if (level.isArray)
            return fmt::format("{}[{}]", level.path, level.index);
        return level.path.empty() ? level.key : fmt::format("{}.{}", level.path, level.key);
    }

    /// The key whose value isn't JSON or, where none is awaited, the list or object that doesn't go on as it should.
    [[nodiscard]] std::string placeOfError() const
    {
        if (m_levels.empty() || m_levels.back().isAwaited)
            return path();
        return m_levels.back().path;
    }

    // The parser has read one character beyond a number, so a scalar in an object stands where its key does.
    void note() { m_lines[path()] = m_levels.empty() || m_levels.back().isArray ? m_line : m_levels.back().keyLine; }

    void next()
    {
        if (m_levels.empty())
            return;
        m_levels.back().isAwaited = false;
        if (m_levels.back().isArray)
            ++m_levels.back().index;
    }

    bool scalar()
    {
        note();
        next();
        return true;
    }

    bool open(bool isArray)
    {
        if (m_levels.size() == kDeepest)
            throw JsonSyntaxError(m_line, fmt::format("{}: nested too deeply", path()));
        note();
        Level level;
        level.path = path();
        level.isArray = isArray;
        m_levels.push_back(std::move(level));
        return true;
    }

    bool close()
    {
        m_levels.pop_back();
        next();
        return true;
    }

    const std::size_t &m_line;
    std::unordered_map<std::string, std::size_t> &m_lines;
    std::vector<Level> m_levels;
};

/// The parser would take a NUL byte for the end of the text.
void requireNoNul(std::string_view text)
{
    const std::size_t at = text.find('\0');
    if (at == std::string_view::npos)
        return;
    const auto newlines = std::ranges::count(text.substr(0, at), '\n');
    throw JsonSyntaxError(static_cast<std::size_t>(newlines) + 1, "not JSON at a NUL byte");
}

} // namespace

JsonPositions::JsonPositions(std::string_view text)
{
    requireNoNul(text);
    std::size_t line = 1;
    Noter noter(line, m_lines);
    const CountingIterator begin(text.data(), &line);
    const CountingIterator end(text.data() + text.size(), &line);
    (void)Json::sax_parse(begin, end, &noter);
}

std::size_t JsonPositions::line(std::string_view path) const
{
    for (;;) {
        const auto found = m_lines.find(std::string(path));
        if (found != m_lines.end())
            return found->second;
        if (path.empty())
            return 1;
        const std::size_t cut = path.find_last_of(".[");
        path = path.substr(0, cut == std::string_view::npos ? 0 : cut);
    }
}

} // namespace brindle::tools
