#include "cli/DiskRowsText.h"

#include "cli/DisplayText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace brindle {

namespace {

using nlohmann::ordered_json;

constexpr std::size_t kGap = 2;

struct Piece {
    std::string text;
    Style style = Style::plain;
};

using Line = std::vector<Piece>;

constexpr auto kStyles = std::to_array<std::pair<Color, Style>>({
    {Colors::kSecondary, Style::dim},
    {Colors::kGreen, Style::good},
    {Colors::kRed, Style::bad},
    {Colors::kBlue, Style::accent},
    {Colors::kOpenCore, Style::accent},
});

Style styleOf(Color color)
{
    const auto found = std::ranges::find(kStyles, color, &std::pair<Color, Style>::first);
    return found == kStyles.end() ? Style::plain : found->second;
}

Piece pieceOf(const RowText &text)
{
    return {visibleText(text.text), styleOf(text.color)};
}

/// Sets the pieces side by side, and cuts them where the line ends.
std::string printed(const Line &line, const Terminal &terminal)
{
    std::size_t left = terminal.width == 0 ? std::string::npos : terminal.width;
    std::string result;
    for (const Piece &piece : line) {
        const std::string text = elided(piece.text, left);
        result += styled(text, piece.style, terminal);
        left -= displayWidth(text);
    }
    return result + '\n';
}

Line nameLine(const DiskRowContent &row, std::size_t indent)
{
    const std::string blanks(indent - displayWidth(row.disk.identifier), ' ');
    return {{row.disk.identifier, Style::heading},
            {blanks},
            pieceOf(row.name()),
            {std::string(kGap, ' ')},
            pieceOf(row.volumeLabel())};
}

Line detailsLine(const DiskRowContent &row, std::size_t indent)
{
    Line line{{std::string(indent, ' ')}};
    for (const RowText &item : row.details()) {
        if (line.size() > 1)
            line.push_back({" " + DiskRowContent::bullet().text + " ", Style::dim});
        line.push_back(pieceOf(item));
    }
    return line;
}

Line spaceLine(const SpaceBar &bar, std::size_t indent)
{
    return {{std::string(indent, ' ')}, pieceOf(bar.space), {std::string(kGap, ' ')}, pieceOf(bar.percent)};
}

ordered_json textsOf(const std::vector<RowText> &items)
{
    ordered_json texts = ordered_json::array();
    for (const RowText &item : items)
        texts.push_back(item.text);
    return texts;
}

ordered_json objectOf(const DiskRowContent &row)
{
    ordered_json object{{"identifier", row.disk.identifier},       {"symbol", row.icon().name},
                        {"typeLabel", row.typeLabel().text},       {"indicators", textsOf(row.indicators())},
                        {"bootLabels", textsOf(row.bootLabels())}, {"volumeLabel", row.volumeLabel().text}};
    if (const std::optional<RowText> badge = row.smartBadge())
        object["smartBadge"] = badge->text;
    if (const std::optional<SpaceBar> bar = row.spaceBar()) {
        object["spaceText"] = bar->space.text;
        object["percent"] = bar->percentage();
        object["barColor"] = bar->color.value;
    }
    return object;
}

} // namespace

std::string diskRowsText(const std::vector<DiskRowContent> &rows, const Terminal &terminal)
{
    if (rows.empty())
        return "No disks found.\n";
    std::size_t indent = 0;
    for (const DiskRowContent &row : rows)
        indent = std::max(indent, displayWidth(row.disk.identifier) + kGap);
    std::string text;
    for (const DiskRowContent &row : rows) {
        text += printed(nameLine(row, indent), terminal) + printed(detailsLine(row, indent), terminal);
        if (const std::optional<SpaceBar> bar = row.spaceBar())
            text += printed(spaceLine(*bar, indent), terminal);
    }
    return text;
}

std::string diskRowsJson(const std::vector<DiskRowContent> &rows)
{
    ordered_json array = ordered_json::array();
    std::ranges::transform(rows, std::back_inserter(array), objectOf);
    return array.dump(2, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

} // namespace brindle
