#pragma once

#include "base/RawValue.h"

#include <array>
#include <string_view>

namespace brindle {

/// The health of a disk as the tool reports it.
enum class SMARTStatus { verified, failing, notSupported, unknown };

template <>
inline constexpr std::array kRawValues<SMARTStatus> =
    std::to_array<std::string_view>({"Verified", "Failing", "Not Supported", "Unknown"});

} // namespace brindle
