#pragma once

#include "platform/ChildProcess.h"
#include "platform/linux/FileDescriptor.h"

#include <sys/types.h>

namespace brindle {

/// Starts \a command with these descriptors as its standard output and standard error; gives its process identifier.
///
/// Throws Error with what the system says of the path, and EINVAL for a text that holds a zero byte.
[[nodiscard]] pid_t posixSpawn(const ChildProcessCommand &command, const FileDescriptor &standardOutput,
                               const FileDescriptor &standardError);

} // namespace brindle
