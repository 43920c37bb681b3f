#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace brindle::tools {

/// The bytes of \a file, the first 4 MiB at most; empty where it cannot be read.
[[nodiscard]] std::string fileBytes(const std::filesystem::path &file);

/// The whole number that \a file holds, with "0x" in front or in decimal.
[[nodiscard]] std::optional<std::uint64_t> fileNumber(const std::filesystem::path &file);

/// The names in \a folder, sorted; empty where it cannot be read.
[[nodiscard]] std::vector<std::string> namesIn(const std::filesystem::path &folder);

} // namespace brindle::tools
