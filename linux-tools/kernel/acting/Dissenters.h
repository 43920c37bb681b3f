#pragma once

#include "acting/ActionWords.h"

#include <optional>
#include <string>

namespace brindle::tools {

/// The first process that has a file or folder at or below \a mountPoint open, or works there; `nullopt` where none is
/// to be seen.
/// \param processes "/proc"
[[nodiscard]] std::optional<Dissenter> findDissenter(const std::string &processes, const std::string &mountPoint);

} // namespace brindle::tools
