#include "detectors/ToolText.h"

#include "base/Text.h"

#include <algorithm>
#include <array>

namespace brindle::ToolText {

namespace {

std::size_t skipDigits(std::string_view text, std::size_t at)
{
    while (at < text.size() && isDigit(text[at]))
        ++at;
    return at;
}

/// A blank, or one of ASCII's from the tab to the carriage return.
bool isBlank(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

std::size_t skipBlanks(std::string_view text, std::size_t at)
{
    while (at < text.size() && isBlank(text[at]))
        ++at;
    return at;
}

/// Whether what stands at \a at, behind the first digits of a number, makes it a size.
bool endsAsSize(std::string_view text, std::size_t at)
{
    constexpr std::array<std::string_view, 4> kUnits{"GB", "MB", "TB", "KB"};
    if (text.substr(at).starts_with('.'))
        at = skipDigits(text, at + 1);
    const std::size_t unit = skipBlanks(text, at);
    return unit > at && std::ranges::find(kUnits, text.substr(unit, 2)) != kUnits.end();
}

} // namespace

std::optional<std::string> valueOf(std::string_view line, std::string_view label)
{
    if (!line.starts_with(label))
        return std::nullopt;
    return std::string(trimmed(without(line, label)));
}

bool isGiven(std::string_view value)
{
    return !value.empty() && value != "Not applicable";
}

std::optional<std::string_view> numbered(std::string_view text, std::string_view stem, std::string_view infix)
{
    for (std::size_t at = text.find(stem); at != std::string_view::npos; at = text.find(stem, at + 1)) {
        if (!text.substr(at + stem.size()).starts_with(infix))
            continue;
        const std::size_t digits = at + stem.size() + infix.size();
        const std::size_t end = skipDigits(text, digits);
        if (end > digits)
            return text.substr(at, end - at);
    }
    return std::nullopt;
}

std::optional<std::string_view> partitionIn(std::string_view text, std::string_view disk)
{
    return numbered(text, disk, "s");
}

std::optional<std::string_view> containerIn(std::string_view line)
{
    constexpr std::string_view kWord = "Container ";
    std::optional<std::string_view> container = numbered(line, "Container disk");
    if (container)
        container->remove_prefix(kWord.size());
    return container;
}

bool isEFILine(std::string_view line)
{
    // Volumes of other kinds may bear a name with one of the wanted words in it.
    constexpr std::array<std::string_view, 2> kWanted{"EFI", "ESP"};
    constexpr std::array<std::string_view, 4> kUnwanted{"WINDOWS_NTFS", "APPLE_HFS", "APPLE_APFS", "EXFAT"};
    const std::string raised = upperCased(line);
    const auto isThere = [&](std::string_view word) { return contains(raised, word); };
    return std::ranges::any_of(kWanted, isThere) && std::ranges::none_of(kUnwanted, isThere);
}

std::optional<std::size_t> positionOfSize(std::string_view text)
{
    // All digits of a run share what follows the run, so that only a run's first digit can begin the first size.
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (!isDigit(text[at]))
            continue;
        const std::size_t end = skipDigits(text, at);
        if (endsAsSize(text, end))
            return at;
        at = end;
    }
    return std::nullopt;
}

void DistinctTexts::add(std::string_view text)
{
    if (m_known.emplace(text).second)
        m_list.emplace_back(text);
}

} // namespace brindle::ToolText
