#pragma once

#include <chrono>

namespace brindle {

/// How long a test waits for what comes soon even on a busy machine: one that hangs fails in the end, and none waits
/// for this.
inline constexpr std::chrono::seconds kPatience{60};
inline constexpr int kPatienceMilliseconds = static_cast<int>(std::chrono::milliseconds(kPatience).count());

} // namespace brindle
