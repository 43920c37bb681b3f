#pragma once

#include <string>
#include <string_view>

namespace brindle::tools {

/// A random UUID (version 4) in upper case.
[[nodiscard]] std::string makeUuid();

/// A random identifier in the form that libblkid prints for \a fileSystem: "67E3-17ED" for FAT, a UUID for most.
[[nodiscard]] std::string makeVolumeId(std::string_view fileSystem);

} // namespace brindle::tools
