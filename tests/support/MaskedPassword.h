#pragma once

#include "base/Secret.h"

namespace brindle {

/// A password that this process holds in the clear nowhere but in the result, so that every place where it is found is
/// a copy of that.
[[nodiscard]] Secret maskedPassword();

/// Whether the writable memory of this process holds maskedPassword() anywhere.
[[nodiscard]] bool isMaskedPasswordInMemory();

} // namespace brindle
