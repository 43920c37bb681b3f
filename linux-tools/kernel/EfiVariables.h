#pragma once

#include "inventory/Inventory.h"

#include <optional>
#include <string>
#include <string_view>

namespace brindle::tools {

/// Reads a variable of the firmware from efivarfs: \a name is "GUID:name", or a plain name that is looked for under
/// the GUID of the platform's own variables, then under that of the boot loaders. `nullopt` when there is none.
[[nodiscard]] std::optional<NvramVariable> readEfiVariable(const std::string &directory, std::string_view name);

} // namespace brindle::tools
