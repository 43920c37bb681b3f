#include "cli/DiskTable.h"

#include "cli/DisplayText.h"
#include "views/DiskRowContent.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace brindle {

namespace {

enum Column : std::size_t { identifier, name, type, size, used, smart, holds, volumes, columnCount };

constexpr std::size_t kGap = 2;
constexpr std::size_t kNarrowestName = 12;
constexpr std::size_t kNarrowestVolumes = 10;
constexpr std::size_t kNarrowestHolds = 9;
// No real machine reaches these; a text that a broken drive or tool makes up can.
constexpr std::size_t kWidestIdentifier = 16;
constexpr std::size_t kWidestSize = 12;

/// What a narrow terminal goes without, one after the other.
constexpr std::array kLeastWanted{volumes, smart, used, type, size};

constexpr std::string_view kNothing = "–";

struct Cell {
    std::string text;
    Style style = Style::plain;
    std::string path = {}; ///< Stands behind the text, and is cut at its start.

    [[nodiscard]] std::string whole() const { return text + path; }

    [[nodiscard]] std::string cutTo(std::size_t width) const
    {
        const std::size_t textWidth = displayWidth(text);
        if (path.empty() || textWidth >= width)
            return elided(whole(), width);
        return text + elidedAtStart(path, width - textWidth);
    }
};

/// The last cell of a line that has fewer than all columns runs on to its end, whatever the columns are.
using Line = std::vector<Cell>;

/// The cells of each column; nullopt for one that isn't shown.
using Widths = std::array<std::optional<std::size_t>, columnCount>;

Cell typeCell(PhysicalDisk::DiskType diskType)
{
    switch (diskType) {
    case PhysicalDisk::DiskType::physicalExternal:
        return {"external", Style::accent};
    case PhysicalDisk::DiskType::removable:
        return {"removable", Style::accent};
    case PhysicalDisk::DiskType::diskImage:
        return {"image", Style::dim};
    case PhysicalDisk::DiskType::physicalInternal:
        break;
    }
    return {"internal"};
}

Cell smartCell(SMARTStatus status)
{
    switch (status) {
    case SMARTStatus::verified:
        return {"verified", Style::good};
    case SMARTStatus::failing:
        return {"FAILING", Style::bad};
    case SMARTStatus::notSupported:
    case SMARTStatus::unknown:
        break;
    }
    return {std::string(kNothing), Style::dim};
}

Cell usedCell(DiskRowContent row)
{
    row.showDiskSpaceIndicator = true;
    const std::optional<SpaceBar> bar = row.spaceBar();
    if (!bar)
        return {std::string(kNothing), Style::dim};
    return {bar->percent.text, bar->color == Colors::kRed ? Style::bad : Style::plain};
}

/// The boot role, the boot loaders and the systems. Unlike its row, a boot disk tells all of them.
Cell holdsCell(DiskRowContent row)
{
    std::string text = row.disk.isBootDisk ? "Boot Disk" : "";
    row.disk.isBootDisk = false;
    for (const RowText &indicator : row.indicators()) {
        if (indicator.color != Colors::kSecondary)
            text += (text.empty() ? "" : ", ") + indicator.text;
    }
    return text.empty() ? Cell{std::string(kNothing), Style::dim} : Cell{text};
}

Line diskLine(const PhysicalDisk &disk)
{
    const DiskRowContent row{.disk = disk};
    return {
        {disk.identifier, Style::heading},
        {visibleText(disk.name)},
        typeCell(disk.diskType),
        {visibleText(disk.size)},
        usedCell(row),
        smartCell(disk.smartStatus),
        holdsCell(row),
        {visibleText(disk.volumeName.value_or(""))},
    };
}

Line partitionLine(const EFIPartition &partition)
{
    const std::string label = visibleText(partition.volumeName.value_or(""));
    const Cell state = partition.isMounted
                           ? Cell{"mounted at ", Style::good, visibleText(partition.mountPoint.value_or(""))}
                           : Cell{"not mounted", Style::dim};
    return {{"  " + partition.identifier, Style::dim}, {label}, {"EFI", Style::dim}, state};
}

bool runsOn(const Line &line, std::size_t column)
{
    return column + 1 == line.size() && line.size() < columnCount;
}

Widths naturalWidths(const std::vector<Line> &lines)
{
    Widths widths;
    widths.fill(0);
    for (const Line &line : lines) {
        for (std::size_t column = 0; column < line.size(); ++column) {
            if (!runsOn(line, column))
                widths[column] = std::max(*widths[column], displayWidth(line[column].whole()));
        }
    }
    return widths;
}

/// Cells of the columns before \a end that are shown, and of the gaps behind them.
std::size_t cellsBefore(std::size_t end, const Widths &widths)
{
    std::size_t cells = 0;
    for (std::size_t column = 0; column < end; ++column)
        cells += widths[column] ? *widths[column] + kGap : 0;
    return cells;
}

std::size_t cellsBeyond(const Terminal &terminal, const Widths &widths)
{
    const std::size_t needed = cellsBefore(columnCount, widths) - kGap;
    return needed > terminal.width ? needed - terminal.width : 0;
}

/// Takes from a column what is too much for the line, down to its narrowest.
void shrink(Widths &widths, std::size_t column, std::size_t narrowest, const Terminal &terminal)
{
    std::optional<std::size_t> &width = widths[column];
    if (width && *width > narrowest)
        *width -= std::min(*width - narrowest, cellsBeyond(terminal, widths));
}

void fit(Widths &widths, const Terminal &terminal)
{
    if (terminal.width == 0)
        return;
    widths[identifier] = std::min(*widths[identifier], kWidestIdentifier);
    widths[size] = std::min(*widths[size], kWidestSize);
    const std::optional<std::size_t> wholeName = widths[name];
    shrink(widths, volumes, kNarrowestVolumes, terminal);
    shrink(widths, name, kNarrowestName, terminal);
    for (const Column column : kLeastWanted) {
        if (cellsBeyond(terminal, widths) == 0)
            return;
        widths[column].reset();
        widths[name] = wholeName;
        shrink(widths, name, kNarrowestName, terminal);
    }
    shrink(widths, holds, kNarrowestHolds, terminal);
    if (cellsBeyond(terminal, widths) > 0)
        widths[holds].reset();
    shrink(widths, name, 1, terminal);
    shrink(widths, identifier, 1, terminal);
}

/// Cells from a column to the end of the line; all there are where nothing is cut.
std::size_t remainingWidth(std::size_t column, const Widths &widths, const Terminal &terminal)
{
    if (terminal.width == 0)
        return std::string::npos;
    const std::size_t used = cellsBefore(column, widths);
    return terminal.width > used ? terminal.width - used : 0;
}

std::string printed(const Line &line, const Widths &widths, const Terminal &terminal)
{
    std::string result;
    for (std::size_t column = 0; column < line.size(); ++column) {
        const Cell &cell = line[column];
        if (runsOn(line, column)) {
            if (const std::size_t width = remainingWidth(column, widths, terminal))
                result += styled(cell.cutTo(width), cell.style, terminal);
        } else if (widths[column]) {
            const std::string text = cell.cutTo(*widths[column]);
            const std::string blanks(*widths[column] - displayWidth(text), ' ');
            const std::string shown = styled(text, cell.style, terminal);
            const bool isNumber = column == size || column == used;
            result += (isNumber ? blanks + shown : shown + blanks) + std::string(kGap, ' ');
        }
    }
    result.erase(result.find_last_not_of(' ') + 1);
    return result + '\n';
}

} // namespace

std::string diskTable(const std::vector<PhysicalDisk> &disks, const Terminal &terminal)
{
    if (disks.empty())
        return "No disks found.\n";

    std::vector<Line> lines{
        {{"DISK", Style::dim},
         {"NAME", Style::dim},
         {"TYPE", Style::dim},
         {"SIZE", Style::dim},
         {"USED", Style::dim},
         {"SMART", Style::dim},
         {"HOLDS", Style::dim},
         {"VOLUMES", Style::dim}},
    };
    for (const PhysicalDisk &disk : disks) {
        lines.push_back(diskLine(disk));
        std::transform(disk.efiPartitions.begin(), disk.efiPartitions.end(), std::back_inserter(lines), partitionLine);
    }

    Widths widths = naturalWidths(lines);
    fit(widths, terminal);
    std::string table;
    for (const Line &line : lines)
        table += printed(line, widths, terminal);
    return table;
}

} // namespace brindle
