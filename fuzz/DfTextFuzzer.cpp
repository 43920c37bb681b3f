// The text of `df -k`, and a disk's section that names containers: the space of each disk.

#include "Numbered.h"
#include "Require.h"

#include "state/SpaceFigures.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

using namespace brindle;

namespace {

void requireFigure(const std::optional<std::int64_t> &bytes)
{
    const bool isWhole = bytes == std::numeric_limits<std::int64_t>::max() || (bytes && *bytes % 1024 == 0);
    require(!bytes || (*bytes >= 1024 && isWhole), "a figure is absent, the largest one or whole kibibytes");
}

void requireFigures(const SpaceFigures &figures)
{
    requireFigure(figures.usedSpaceBytes);
    requireFigure(figures.totalSpaceBytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);

    const DiskUsage usage = parseDfOutput(text);
    std::vector<std::string> containers = containerDisks(text);

    for (const std::string &container : containers)
        require(isNumbered(container, "disk"), "a container is a whole disk");
    for (const auto &[disk, fileSystems] : usage) {
        require(isNumbered(disk, "disk"), "a file system is a whole disk's");
        require(!fileSystems.empty(), "a disk that is told of has a file system");
        requireFigures(spaceFigures(disk, {}, usage));
        requireFigures(spaceFigures(disk, containers, usage));
        for (const FileSystemUsage &fileSystem : fileSystems) {
            const SpaceFigures figures = spaceFigures(disk, {}, {{disk, {fileSystem}}});
            require(figures.usedSpaceBytes.has_value() == (fileSystem.used > 0), "what is used has a figure");
            require(figures.totalSpaceBytes.has_value() == (fileSystem.total > 0), "what there is has a figure");
        }
        const SpaceFigures twice = spaceFigures(disk, {}, {{disk, {fileSystems.front(), fileSystems.front()}}});
        require(twice.usedSpaceBytes.has_value() == (fileSystems.front().used > 0), "a sum keeps the sign");
    }
    return 0;
}
