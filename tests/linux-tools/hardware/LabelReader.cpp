#include "LabelReader.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <optional>
#include <vector>

namespace brindle::tools {
namespace {

std::vector<std::string_view> trimmedLines(std::string_view text)
{
    std::vector<std::string_view> lines;
    for (const std::string_view line : Lines(text))
        lines.push_back(trimmed(line));
    return lines;
}

/// The value of \a line, which is empty where the line bears another label.
std::string valueOf(std::string_view line, std::string_view label)
{
    return line.starts_with(label) ? std::string(trimmed(without(line, label))) : std::string();
}

bool tells(std::string_view value)
{
    return !value.empty() && value != "Empty";
}

struct Card {
    std::string name;
    std::string memory;
};

std::string joined(const std::vector<Card> &cards)
{
    std::string text;
    for (const Card &card : cards) {
        if (card.name.empty())
            continue;
        text += text.empty() ? "" : ", ";
        text += card.memory.empty() ? card.name : card.name + ' ' + card.memory;
    }
    return text;
}

} // namespace

std::string labelled(std::string_view text, std::string_view label)
{
    for (const std::string_view line : trimmedLines(text))
        if (line.starts_with(label))
            return valueOf(line, label);
    return {};
}

std::string typeAndSpeed(std::string_view memoryText)
{
    const std::vector<std::string_view> lines = trimmedLines(memoryText);
    for (std::size_t at = 0; at < lines.size(); ++at) {
        const std::string type = valueOf(lines[at], "Type:");
        for (std::size_t behind = at + 1; tells(type) && behind < lines.size() && behind <= at + 4; ++behind)
            if (const std::string speed = valueOf(lines[behind], "Speed:"); tells(speed))
                return fmt::format("{} {}", type, speed);
    }
    return {};
}

std::string cards(std::string_view displaysText)
{
    std::optional<std::vector<Card>> found;
    for (const std::string_view line : trimmedLines(displaysText)) {
        if (line == "Displays:")
            break;
        if (line.find("Graphics/Displays:") != std::string_view::npos)
            found.emplace();
        else if (found && line.ends_with(':') && line.find("Display") == std::string_view::npos)
            found->push_back({.name = std::string(line.substr(0, line.size() - 1)), .memory = {}});
        else if (found && !found->empty() && line.starts_with("Chipset Model:"))
            found->back().name = valueOf(line, "Chipset Model:");
        else if (found && !found->empty() && line.starts_with("VRAM"))
            found->back().memory =
                valueOf(line, line.starts_with("VRAM (Total):") ? "VRAM (Total):" : "VRAM (Dynamic, Max):");
    }
    return found ? joined(*found) : std::string();
}

} // namespace brindle::tools
