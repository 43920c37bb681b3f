// The reader that compares two states of the mount table; a zero byte parts them in the input.

#include "Require.h"

#include "platform/linux/MountChanges.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

using namespace brindle;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) // NOLINT
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    const std::string_view before = text.substr(0, text.find('\0'));
    const std::string_view after = text.substr(std::min(text.size(), before.size() + 1));

    const MountChanges changes = compareMountTables(before, after);
    const MountChanges back = compareMountTables(after, before);

    require(changes.mounted == back.unmounted && changes.unmounted == back.mounted, "the way back undoes the changes");
    require(compareMountTables(before, before) == MountChanges(), "equal tables have no changes");
    require(std::ranges::none_of(changes.mounted, [](const auto &path) { return path.empty(); }),
            "a volume has a mount point");
    return 0;
}
