#pragma once

#include <chrono>

namespace brindle {

/// How long a test waits for what comes at once on any machine that isn't overloaded: one that hangs fails in the end,
/// and none waits for this.
inline constexpr std::chrono::seconds kPatience{60};

} // namespace brindle
