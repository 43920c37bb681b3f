#pragma once

#include <fmt/format.h>

#include <functional>
#include <string_view>
#include <utility>

namespace brindle {

/// The log: single lines of plain text, whose wording is part of the behaviour. There are no levels.
class Log {
public:
    using Sink = std::function<void(std::string_view line)>;

    /// Writes one line to the sink. Newlines in a value are the value's own; nothing is escaped.
    template <typename... Args>
    static void line(fmt::format_string<Args...> format, Args &&...args)
    {
        write(fmt::format(format, std::forward<Args>(args)...));
    }

    /// Replaces the sink and returns the one before. An empty sink drops the lines.
    static Sink setSink(Sink sink);

    /// The sink at the start: standard output, flushed after each line.
    static void toStandardOutput(std::string_view line);

    static void toStandardError(std::string_view line);

private:
    static void write(std::string_view line);
};

} // namespace brindle
