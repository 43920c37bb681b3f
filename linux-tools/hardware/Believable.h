#pragma once

#include <cstdint>

namespace brindle::tools {

// Firmware and drivers tell nonsense at times. What is beyond these is none of today's or tomorrow's machines.
constexpr std::uint64_t kMostMemoryBytes = std::uint64_t{1} << 52; ///< What an x86-64 processor can address.
constexpr std::uint64_t kMostModuleBytes = std::uint64_t{1} << 46;
constexpr std::uint64_t kMostMegahertz = 100'000;
constexpr std::uint64_t kMostPixels = 65'535; ///< In a row or a column.
constexpr std::uint64_t kMostHertz = 10'000;  ///< Pictures of a display.

/// \a number, or 0, which stands for unknown, where it is above \a most.
[[nodiscard]] constexpr std::uint64_t believed(std::uint64_t number, std::uint64_t most)
{
    return number > most ? 0 : number;
}

} // namespace brindle::tools
