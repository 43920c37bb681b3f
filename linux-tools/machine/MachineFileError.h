#pragma once

#include <stdexcept>

namespace brindle::tools {

/// A machine file can't be used or written. The text names the file and, where one is at fault, its line and key.
class MachineFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace brindle::tools
