#pragma once

#include "platform/ChildProcess.h"

namespace brindle {

/// Child processes by posix_spawn. The event loop watches one pidfd for each; no thread waits.
class LinuxChildProcessLauncher : public ChildProcessLauncher {
public:
    /// What each output pipe is enlarged to where the kernel allows it; it holds its usual 64 KiB elsewhere.
    static constexpr int kPipeBytes = 1024 * 1024;

    std::unique_ptr<ChildProcess> launch(ChildProcessCommand command, Ended ended) override;
};

} // namespace brindle
