#include "machine/Uuid.h"

#include <fmt/format.h>

#include <cstdint>
#include <random>

namespace brindle::tools {

std::string makeUuid()
{
    std::random_device random;
    const auto word = [&] { return static_cast<std::uint32_t>(random()); };
    // The version stands in the high digit of the third group, the variant in the high bits of the fourth (RFC 4122).
    return fmt::format("{:08X}-{:04X}-4{:03X}-{:04X}-{:08X}{:04X}", word(), word() & 0xFFFFU, word() & 0x0FFFU,
                       (word() & 0x3FFFU) | 0x8000U, word(), word() & 0xFFFFU);
}

std::string makeVolumeId(std::string_view fileSystem)
{
    std::string uuid = makeUuid();
    if (fileSystem != "vfat" && fileSystem != "exfat")
        return uuid;
    return uuid.substr(0, 4) + '-' + uuid.substr(4, 4);
}

} // namespace brindle::tools
