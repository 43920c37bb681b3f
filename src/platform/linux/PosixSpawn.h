#pragma once

#include "platform/ChildProcess.h"
#include "platform/linux/FileDescriptor.h"

#include <sys/types.h>

namespace brindle {

/// The descriptors that a program begins with.
struct StandardDescriptors {
    const FileDescriptor &input; ///< Above 2, or empty: the child has the parent's own.
    const FileDescriptor &output;
    const FileDescriptor &error;
};

/// Starts \a command with \a descriptors; gives its process identifier.
///
/// Throws Error with what the system says of the path, and EINVAL for a text that holds a zero byte.
[[nodiscard]] pid_t posixSpawn(const ChildProcessCommand &command, const StandardDescriptors &descriptors);

} // namespace brindle
