#include "state/SpaceFigures.h"

#include "base/Text.h"
#include "detectors/ToolText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace brindle {

namespace {

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

/// The first fields of a line of `df`: device, total, used, and one that only has to be there.
using Fields = std::array<std::string_view, 4>;

std::optional<Fields> firstFields(std::string_view line)
{
    Fields fields;
    for (std::string_view &field : fields) {
        const std::size_t start = line.find_first_not_of(" \t");
        if (start == std::string_view::npos)
            return std::nullopt;
        line.remove_prefix(start);
        field = line.substr(0, line.find_first_of(" \t"));
        line.remove_prefix(field.size());
    }
    return fields;
}

std::optional<std::int64_t> integerIn(std::string_view text)
{
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1); // the only sign that is not read below
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

// A tool that prints absurd numbers gives an absurd figure, and no overflow.

std::int64_t sumOf(std::int64_t left, std::int64_t right)
{
    std::int64_t sum = 0;
    if (__builtin_add_overflow(left, right, &sum))
        return left < 0 ? kLeast : kMost; // of two with one sign only
    return sum;
}

std::optional<std::int64_t> bytesOf(std::int64_t kibibytes)
{
    std::int64_t bytes = 0;
    if (kibibytes < 1)
        return std::nullopt;
    return __builtin_mul_overflow(kibibytes, std::int64_t{1024}, &bytes) ? kMost : bytes;
}

} // namespace

DiskUsage parseDfOutput(std::string_view text)
{
    DiskUsage usage;
    for (const std::string_view line : Lines(text)) {
        const auto fields = firstFields(line);
        if (!fields || !(*fields)[0].starts_with(ToolText::kDiskDevice))
            continue;
        const auto disk = ToolText::numbered((*fields)[0].substr(ToolText::kDeviceFolder.size()), "disk");
        const auto total = integerIn((*fields)[1]);
        const auto used = integerIn((*fields)[2]);
        if (disk && total && used)
            usage[std::string(*disk)].push_back({.used = *used, .total = *total});
    }
    return usage;
}

std::vector<std::string> containerDisks(std::string_view section)
{
    std::vector<std::string> containers;
    for (const std::string_view line : Lines(section)) {
        if (const auto container = ToolText::containerIn(line))
            containers.emplace_back(*container);
    }
    return containers;
}

SpaceFigures spaceFigures(const std::string &identifier, const std::vector<std::string> &containers,
                          const DiskUsage &usage)
{
    std::vector<std::string> counted{identifier};
    counted.insert(counted.end(), containers.begin(), containers.end());
    FileSystemUsage sum;
    for (const std::string &disk : counted) {
        const auto fileSystems = usage.find(disk);
        if (fileSystems == usage.end())
            continue;
        const bool isContainer = std::find(containers.begin(), containers.end(), disk) != containers.end();
        std::int64_t total = isContainer ? fileSystems->second.front().total : 0;
        for (const FileSystemUsage &fileSystem : fileSystems->second) {
            sum.used = sumOf(sum.used, fileSystem.used);
            total = isContainer ? std::max(total, fileSystem.total) : sumOf(total, fileSystem.total);
        }
        sum.total = sumOf(sum.total, total);
    }
    return {.usedSpaceBytes = bytesOf(sum.used), .totalSpaceBytes = bytesOf(sum.total)};
}

} // namespace brindle
