#pragma once

#include "platform/ChildProcess.h"
#include "platform/Scheduler.h"
#include "platform/UserDefaults.h"
#include "records/ToolPaths.h"

#include <memory>
#include <optional>
#include <string>

namespace brindle {

/// What the system supplies, one object for each platform interface. A test puts its own in their place.
struct Platform {
    std::unique_ptr<Scheduler> scheduler;
    std::unique_ptr<ChildProcessLauncher> childProcesses;
    std::unique_ptr<UserDefaults> userDefaults;
    ToolPaths toolPaths;
};

/// The running system's own. BRINDLE_TOOL_ROOT, where it is set and not empty, names a folder that is put in front of
/// every tool's path, so that a folder of programs stands for a whole machine.
[[nodiscard]] Platform makePlatform();

/// The value of an environment variable; nullopt where it is unset or empty.
[[nodiscard]] std::optional<std::string> environmentValue(const char *name);

} // namespace brindle
