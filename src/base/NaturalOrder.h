#pragma once

#include <string_view>

namespace brindle {

/// Whether \a left stands before \a right as a person counts: runs of digits compare by their number, so that "disk2"
/// stands before "disk10". Letters compare without case; texts that are then alike compare by their bytes.
[[nodiscard]] bool naturallyLess(std::string_view left, std::string_view right);

} // namespace brindle
