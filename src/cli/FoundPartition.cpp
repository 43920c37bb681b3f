#include "cli/FoundPartition.h"

#include "base/VisibleText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

namespace brindle {

std::optional<FoundPartition> findEFIPartition(const std::vector<PhysicalDisk> &disks, std::string_view identifier)
{
    for (const PhysicalDisk &disk : disks) {
        const auto partition = std::ranges::find(disk.efiPartitions, identifier, &EFIPartition::identifier);
        if (partition != disk.efiPartitions.end())
            return FoundPartition{disk, *partition};
    }
    fmt::print(stderr, "brindlectl: There is no EFI partition \"{}\"\n", visibleText(identifier));
    return std::nullopt;
}

} // namespace brindle
