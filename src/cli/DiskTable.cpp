#include "cli/DiskTable.h"

#include "cli/DisplayText.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace brindle {

namespace {

enum Column : std::size_t { identifier, name, type, size, smart, volumes, columnCount };

constexpr std::size_t kGap = 2;
constexpr std::size_t kNarrowestName = 12;
constexpr std::size_t kNarrowestVolumes = 10;
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

/// The last cell of a line runs on to its end, whatever the columns are.
using Line = std::vector<Cell>;
using Widths = std::array<std::size_t, columnCount>;

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

Line diskLine(const PhysicalDisk &disk)
{
    return {
        {disk.identifier, Style::heading}, {visibleText(disk.name)},    typeCell(disk.diskType),
        {visibleText(disk.size)},          smartCell(disk.smartStatus), {visibleText(disk.volumeName.value_or(""))},
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

Widths naturalWidths(const std::vector<Line> &lines)
{
    Widths widths{};
    for (const Line &line : lines) {
        for (std::size_t column = 0; column < line.size(); ++column) {
            // A cell that runs on to the end of its line needs no width of a middle column.
            if (column + 1 < line.size() || column + 1 == columnCount)
                widths[column] = std::max(widths[column], displayWidth(line[column].whole()));
        }
    }
    return widths;
}

/// Takes from a column what is too much for the line, down to its narrowest.
void shrink(std::size_t &width, std::size_t narrowest, std::size_t &tooMuch)
{
    const std::size_t spare = width > narrowest ? std::min(width - narrowest, tooMuch) : 0;
    width -= spare;
    tooMuch -= spare;
}

void fit(Widths &widths, const Terminal &terminal)
{
    const std::size_t needed = std::accumulate(widths.begin(), widths.end(), (columnCount - 1) * kGap);
    if (terminal.width == 0 || needed <= terminal.width)
        return;
    std::size_t tooMuch = needed - terminal.width;
    shrink(widths[volumes], kNarrowestVolumes, tooMuch);
    shrink(widths[name], kNarrowestName, tooMuch);
}

/// Cells from a column to the end of the line, one at least; all there are where nothing is cut.
std::size_t remainingWidth(std::size_t column, const Widths &widths, const Terminal &terminal)
{
    if (terminal.width == 0)
        return std::string::npos;
    std::size_t used = 0;
    for (std::size_t before = 0; before < column; ++before)
        used += widths[before] + kGap;
    return terminal.width > used ? terminal.width - used : 1;
}

std::string printed(const Line &line, const Widths &widths, const Terminal &terminal)
{
    std::string result;
    for (std::size_t column = 0; column < line.size(); ++column) {
        const Cell &cell = line[column];
        if (column + 1 == line.size()) {
            result += styled(cell.cutTo(remainingWidth(column, widths, terminal)), cell.style, terminal);
        } else {
            const std::string text = cell.cutTo(widths[column]);
            const std::string blanks(widths[column] - displayWidth(text), ' ');
            const std::string shown = styled(text, cell.style, terminal);
            result += (column == size ? blanks + shown : shown + blanks) + std::string(kGap, ' ');
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
         {"SMART", Style::dim},
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
