#include "text/DfText.h"

#include "text/Words.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace brindle::tools {
namespace {

// File system, blocks, used, available, capacity, used nodes, free nodes, used nodes in a hundred; then the place.
constexpr std::size_t kColumnCount = 8;

struct Line {
    std::array<std::string, kColumnCount> columns;
    std::string mountPoint;
};

/// How many in a hundred are used, rounded up.
std::string percentUsed(std::uint64_t used, std::uint64_t available)
{
    const double all = static_cast<double>(used) + static_cast<double>(available);
    if (all <= 0)
        return "0%";
    const double ratio = static_cast<double>(used) / all * 100;
    const auto whole = static_cast<std::uint64_t>(ratio);
    return fmt::format("{}%", whole + (static_cast<double>(whole) < ratio ? 1 : 0));
}

Line lineOf(const Mount &mount, const Space &space, std::uint64_t blockBytes)
{
    return {{"/dev/" + mount.carrier, fmt::to_string(space.totalBytes / blockBytes),
             fmt::to_string(space.usedBytes / blockBytes), fmt::to_string(space.availableBytes / blockBytes),
             percentUsed(space.usedBytes, space.availableBytes), fmt::to_string(space.usedNodes),
             fmt::to_string(space.freeNodes), percentUsed(space.usedNodes, space.freeNodes)},
            printable(mount.mountPoint)};
}

std::string layOut(const std::vector<Line> &lines)
{
    std::array<std::size_t, kColumnCount> widths{};
    for (const Line &line : lines) {
        for (std::size_t column = 0; column < kColumnCount; ++column)
            widths[column] = std::max(widths[column], line.columns[column].size());
    }
    std::string text;
    for (const Line &line : lines) {
        text += fmt::format("{:<{}}", line.columns[0], widths[0]);
        for (std::size_t column = 1; column < kColumnCount; ++column)
            text += fmt::format(" {:>{}}", line.columns[column], widths[column]);
        text += "  " + line.mountPoint + '\n';
    }
    return text;
}

} // namespace

std::string dfText(const std::vector<Mount> &mounts, std::uint64_t blockBytes)
{
    std::vector<Line> lines{{{"Filesystem", fmt::format("{}-blocks", blockBytes), "Used", "Available", "Capacity",
                              "iused", "ifree", "%iused"},
                             "Mounted on"}};
    for (const Mount &mount : mounts) {
        if (mount.space)
            lines.push_back(lineOf(mount, *mount.space, blockBytes));
    }
    return layOut(lines);
}

} // namespace brindle::tools
