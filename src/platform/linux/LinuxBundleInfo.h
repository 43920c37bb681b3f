#pragma once

#include "platform/BundleInfo.h"

namespace brindle {

/// What the package was built as: packaging/application.json.
[[nodiscard]] BundleInfo linuxBundleInfo();

} // namespace brindle
