#pragma once

#include "base/Secret.h"

namespace brindle {

/// The first line that \a descriptor gives, without its newline; not a byte is read beyond it. No copy of the bytes
/// stays in memory.
///
/// Throws Error where there is no such line, where it is empty, or where it is longer than sudo takes.
[[nodiscard]] Secret readPasswordLine(int descriptor);

} // namespace brindle
