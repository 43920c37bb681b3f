#pragma once

#include "hardware/HardwareFacts.h"

#include <filesystem>
#include <vector>

namespace brindle::tools {

/// The graphics cards on the PCI bus, by their addresses, with the displays that are plugged into them. The folders
/// run, sys and usr are looked for in \a root. Memory is told where the card's driver tells it.
[[nodiscard]] std::vector<GraphicsCard> graphicsCards(const std::filesystem::path &root);

} // namespace brindle::tools
