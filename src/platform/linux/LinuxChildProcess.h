#pragma once

#include "platform/ChildProcess.h"

namespace brindle {

/// Starts child processes by posix_spawn(3) and learns of their end from the event loop: a running child takes no
/// thread. Children outlive the launcher and are reported as long as the application object lives.
///
/// A child starts with SIGTERM, SIGPIPE and SIGCHLD at their defaults, no signal blocked, and no descriptor but the
/// three standard ones.
class LinuxChildProcessLauncher : public ChildProcessLauncher {
public:
    LinuxChildProcessLauncher();

    std::unique_ptr<ChildProcess> launch(ChildProcessCommand command, Ended ended) override;
};

} // namespace brindle
