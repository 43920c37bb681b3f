#pragma once

#include "records/PhysicalDisk.h"

#include <string>

namespace brindle {

/// What a person reads who asks for a disk's details: lines of "Label: value" without a newline at the end, then, for a
/// health that needs one, an empty line and a note.
[[nodiscard]] std::string diskDetailsText(const PhysicalDisk &disk);

} // namespace brindle
