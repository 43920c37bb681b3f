#pragma once

#include "platform/linux/FileDescriptor.h"

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>

namespace brindle {

/// A tool that waits at its start; it goes on when this ends.
struct HeldTool {
    std::string call; ///< "diskutil mount disk2s1"
    pid_t pid = 0;
    FileDescriptor connection;
};

/// Holds each tool of a machine at its start. All go on by themselves once the gate is gone.
class ToolGate {
public:
    explicit ToolGate(const std::filesystem::path &root); ///< A tool root whose tools are files or links.

    /// The next tool that was started; nullopt once \a program has ended without one.
    [[nodiscard]] std::optional<HeldTool> next(pid_t program) const;

private:
    FileDescriptor m_socket;
};

} // namespace brindle
