#pragma once

#include <string>
#include <string_view>

namespace brindle::tools {

// What programs that read the texts line by line, by their labels, make of them.

/// The value of the first line that begins with \a label, trimmed; empty without one.
[[nodiscard]] std::string labelled(std::string_view text, std::string_view label);

/// Type and speed of the first module that has both: "DDR4 2667 MHz"; empty without one. The speed is looked for in
/// the four lines behind the type.
[[nodiscard]] std::string typeAndSpeed(std::string_view memoryText);

/// The cards with their memory: "Intel UHD Graphics 630 1536 MB, AMD Radeon Pro 560X 4 GB". A line that ends in a colon
/// and doesn't hold "Display" begins a card; the line "Displays:" ends the reading.
[[nodiscard]] std::string cards(std::string_view displaysText);

} // namespace brindle::tools
