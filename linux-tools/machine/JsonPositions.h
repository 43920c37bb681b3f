#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>

namespace brindle::tools {

/// A text is not the JSON that it should be.
class JsonSyntaxError : public std::runtime_error {
public:
    JsonSyntaxError(std::size_t line, const std::string &message) : std::runtime_error(message), m_line(line) {}

    [[nodiscard]] std::size_t line() const { return m_line; } ///< Counted from 1.

private:
    std::size_t m_line;
};

/// The lines on which the values of a JSON text stand, by the paths to them: "", "disks[0]", "disks[0].sizeBytes".
class JsonPositions {
public:
    /// Reads \a text once. Throws JsonSyntaxError where it is not JSON, bears a key twice or is nested deeper than 64.
    explicit JsonPositions(std::string_view text);

    /// The line of the value at \a path, counted from 1; of the nearest value around it where there is none.
    [[nodiscard]] std::size_t line(std::string_view path) const;

private:
    std::unordered_map<std::string, std::size_t> m_lines;
};

} // namespace brindle::tools
