#pragma once

#include "text/Words.h"

#include <stdexcept>
#include <string_view>

namespace brindle::tools {

/// A machine file can't be used or written. The text names the file and, where one is at fault, its line and key; names
/// in it that came from a file or a path are made printable.
class MachineFileError : public std::runtime_error {
public:
    explicit MachineFileError(std::string_view text) : std::runtime_error(printable(text)) {}
};

} // namespace brindle::tools
