#pragma once

#include "inventory/Inventory.h"

#include <cstdint>
#include <string>
#include <vector>

namespace brindle::tools {

/// The text of `df` with blocks of \a blockBytes: one line for each mount whose space is known.
[[nodiscard]] std::string dfText(const std::vector<Mount> &mounts, std::uint64_t blockBytes);

} // namespace brindle::tools
