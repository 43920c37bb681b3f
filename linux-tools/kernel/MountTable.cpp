#include "kernel/MountTable.h"

#include "text/LineReading.h"

#include <algorithm>
#include <array>
#include <optional>

namespace brindle::tools {
namespace {

constexpr bool isOctal(char character)
{
    return character >= '0' && character <= '7';
}

/// The kernel writes blank, tab, newline and backslash as a backslash and three octal digits.
std::string withoutEscapes(std::string_view field)
{
    std::string text;
    for (std::size_t index = 0; index < field.size(); ++index) {
        const std::string_view digits = field[index] == '\\' ? field.substr(index + 1, 3) : std::string_view();
        if (digits.size() == 3 && std::ranges::all_of(digits, isOctal)) {
            text += static_cast<char>((digits[0] - '0') * 64 + (digits[1] - '0') * 8 + (digits[2] - '0'));
            index += digits.size();
        } else {
            text += field[index];
        }
    }
    return text;
}

bool hasOption(std::string_view options, std::string_view wanted)
{
    while (!options.empty()) {
        if (takeField(options, ',') == wanted)
            return true;
    }
    return false;
}

std::optional<MountEntry> parseLine(std::string_view line)
{
    takeField(line, ' '); // The mount's own number,
    takeField(line, ' '); // and that of the mount above it.
    const auto device = parseDeviceNumber(takeField(line, ' '));
    if (!device)
        return std::nullopt;
    MountEntry entry{.device = *device};
    entry.root = withoutEscapes(takeField(line, ' '));
    entry.mountPoint = withoutEscapes(takeField(line, ' '));
    entry.isReadOnly = hasOption(takeField(line, ' '), "ro");
    while (!line.empty() && takeField(line, ' ') != "-") {
        // Any number of optional fields stands before the dash.
    }
    entry.fileSystem = withoutEscapes(takeField(line, ' '));
    entry.source = withoutEscapes(takeField(line, ' '));
    entry.options = withoutEscapes(takeField(line, ' '));
    if (entry.mountPoint.empty() || entry.fileSystem.empty())
        return std::nullopt;
    return entry;
}

/// Splits at a separator that has no backslash before it, and drops those backslashes.
std::vector<std::string> splitUnescaped(std::string_view text, char separator)
{
    std::vector<std::string> parts(1);
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] == separator) {
            parts.emplace_back();
            continue;
        }
        const bool isEscape = text[index] == '\\' && index + 1 < text.size() && text[index + 1] == separator;
        parts.back() += text[isEscape ? ++index : index];
    }
    return parts;
}

} // namespace

std::vector<MountEntry> parseMountTable(std::string_view text)
{
    std::vector<MountEntry> entries;
    while (!text.empty()) {
        if (auto entry = parseLine(takeLine(text)))
            entries.push_back(std::move(*entry));
    }
    return entries;
}

std::vector<std::string> overlayLayers(const MountEntry &entry)
{
    std::vector<std::string> layers;
    if (entry.fileSystem != "overlay")
        return layers;
    constexpr std::array<std::string_view, 2> kKeys{"lowerdir=", "upperdir="};
    for (const std::string_view key : kKeys) {
        for (const std::string &option : splitUnescaped(entry.options, ',')) {
            if (!option.starts_with(key))
                continue;
            for (std::string &layer : splitUnescaped(std::string_view(option).substr(key.size()), ':')) {
                if (layer.starts_with('/'))
                    layers.push_back(std::move(layer));
            }
        }
    }
    return layers;
}

} // namespace brindle::tools
