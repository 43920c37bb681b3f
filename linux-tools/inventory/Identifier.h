#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace brindle::tools {

/// The numbers of "disk2" or "disk2s1".
struct Identifier {
    std::uint64_t disk = 0;
    std::optional<std::uint64_t> partition;
};

/// Reads an identifier, with or without "/dev/" before it; `nullopt` for any other text.
[[nodiscard]] std::optional<Identifier> parseIdentifier(std::string_view text);

[[nodiscard]] std::string diskIdentifier(std::uint64_t disk);
[[nodiscard]] std::string partitionIdentifier(std::string_view diskIdentifier, std::uint64_t partition);

} // namespace brindle::tools
