#pragma once

#include "platform/linux/FileDescriptor.h"

#include <string_view>

namespace brindle {

/// The read end of a pipe that holds \a bytes and then ends, for a child's standard input: written before the child is
/// there, so that one which reads nothing breaks no pipe. Its number is above those of the standard descriptors; no
/// program inherits it.
///
/// Throws Error where no descriptor is left or the pipe doesn't hold so much (EAGAIN).
[[nodiscard]] FileDescriptor inputPipeHolding(std::string_view bytes);

} // namespace brindle
