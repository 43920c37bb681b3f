#pragma once

#include "acting/Actor.h"

#include <string>

namespace brindle::tools {

/// What the maker of a file system prints of its work, as the platform's makers of FAT and HFS+ do, in whole lines;
/// empty for the other file systems.
[[nodiscard]] std::string formattingText(const Erased &erased, const Format &format);

} // namespace brindle::tools
