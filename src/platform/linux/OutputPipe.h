#pragma once

#include "platform/linux/FileDescriptor.h"

#include <string>

namespace brindle {

/// The pipe that one of the outputs of a child process goes into.
///
/// It is enlarged to 1 MiB where the kernel allows it: pipe(7) lets a user without privileges have 64 MiB of pipes, and
/// gives the usual 64 KiB beyond. No program inherits it.
struct OutputPipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;

    /// Throws Error where no descriptor is left.
    [[nodiscard]] static OutputPipe open();

    /// What stands in the pipe at this moment, without waiting for more; closes it. Throws Error.
    [[nodiscard]] static std::string contents(FileDescriptor readEnd);
};

} // namespace brindle
