#include "platform/linux/LinuxSystemValues.h"

#include "base/Text.h"

#include <fstream>
#include <iterator>
#include <utility>

namespace brindle {

namespace {

/// What a shell makes of an assigned word: quotes around it go, and of a backslash with what it escapes only that
/// stays. Between single quotes nothing is escaped.
std::string unquoted(std::string_view word)
{
    const char quote = word.empty() ? '\0' : word.front();
    if (word.size() >= 2 && (quote == '"' || quote == '\'') && word.back() == quote) {
        word.remove_prefix(1);
        word.remove_suffix(1);
        if (quote == '\'')
            return std::string(word);
    }
    std::string plain;
    for (std::size_t at = 0; at < word.size(); ++at) {
        if (word[at] == '\\' && at + 1 < word.size())
            ++at;
        plain += word[at];
    }
    return plain;
}

} // namespace

std::optional<std::string> osReleaseValue(std::string_view text, std::string_view name)
{
    std::optional<std::string> value;
    for (std::string_view line : Lines(text)) {
        line = trimmed(line);
        if (!line.starts_with(name) || !line.substr(name.size()).starts_with('='))
            continue;
        value = unquoted(line.substr(name.size() + 1));
    }
    return value && !value->empty() ? value : std::nullopt;
}

LinuxSystemValues::LinuxSystemValues(std::vector<std::filesystem::path> files) : m_files(std::move(files)) {}

std::string LinuxSystemValues::systemName() const
{
    return value("NAME").value_or("Linux");
}

std::optional<std::string> LinuxSystemValues::systemVersion() const
{
    return value("VERSION_ID");
}

std::optional<std::string> LinuxSystemValues::value(std::string_view name) const
{
    for (const std::filesystem::path &path : m_files) {
        std::ifstream file(path);
        if (file)
            return osReleaseValue(std::string(std::istreambuf_iterator<char>(file), {}), name);
    }
    return std::nullopt;
}

} // namespace brindle
