#pragma once

#include "hardware/HardwareFacts.h"

#include <optional>
#include <string_view>

namespace brindle::tools {

/// What a display says of itself: name, serial number and the size and rate of its own pixels.
///
/// \a edid is a base block of 128 bytes with anything behind it (VESA E-EDID, release A, 3). `nullopt` where it isn't
/// one or its check sum is wrong.
[[nodiscard]] std::optional<Display> readEdid(std::string_view edid);

} // namespace brindle::tools
