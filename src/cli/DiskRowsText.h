#pragma once

#include "cli/Terminal.h"
#include "views/DiskRowContent.h"

#include <string>
#include <vector>

namespace brindle {

/// The rows for people: name and label, details and, where it is shown, space, on a line each. On a terminal the lines
/// are cut to its width.
[[nodiscard]] std::string diskRowsText(const std::vector<DiskRowContent> &rows, const Terminal &terminal);

/// The rows for programs, as a JSON array of objects with the keys identifier, symbol, typeLabel, indicators,
/// bootLabels and volumeLabel, and only where they are shown smartBadge, spaceText, percent and barColor. Bytes that
/// are no UTF-8 become U+FFFD.
[[nodiscard]] std::string diskRowsJson(const std::vector<DiskRowContent> &rows);

} // namespace brindle
