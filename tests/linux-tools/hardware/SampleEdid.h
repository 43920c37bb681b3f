#pragma once

#include <string>
#include <string_view>

namespace brindle::tools {

/// A block of a display of 3840 x 2160 at 60 Hz by the maker "DEL", with the texts that aren't empty.
[[nodiscard]] std::string sampleEdid(std::string_view name, std::string_view serialNumber);

/// \a block with the check sum that its other bytes ask for.
[[nodiscard]] std::string withCheckSum(std::string block);

} // namespace brindle::tools
