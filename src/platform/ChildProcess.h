#pragma once

#include "base/Error.h"
#include "base/Secret.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// What a child process is started from. Nothing is quoted, joined or looked up: no shell stands between. A text with
/// a zero byte makes the start fail.
struct ChildProcessCommand {
    std::string path;                   ///< Absolute.
    std::vector<std::string> arguments; ///< Without the program's name.
    /// The child's whole environment; the parent's own, untouched, where it is absent.
    std::optional<std::map<std::string, std::string>> environment = {};
    /// All that the child's standard input holds; the parent's own standard input where it is absent. The start fails
    /// where it doesn't fit into a pipe, which holds 4 KiB at least.
    std::optional<Secret> standardInput = {};
};

/// How a child process ended and what it had written by then.
struct ChildProcessEnd {
    /// Why it could not be started or its output not be read; the other fields say nothing then.
    std::optional<Error> failure = {};
    int terminationStatus = 0; ///< The exit status, or the number of the signal that ended it.
    std::string standardOutput = {};
    std::string standardError = {};
};

/// A child process that was asked for. Its end waits for nothing and leaves the child to itself.
class ChildProcess {
public:
    virtual ~ChildProcess() = default;

    /// Started, and not seen to have ended yet: right after launch() it says whether the start worked.
    [[nodiscard]] virtual bool isRunning() const = 0;

    /// Asks a running child to end (SIGTERM); nothing otherwise. A child may refuse: there is no harder way.
    virtual void terminate() = 0;
};

/// Starts child processes and tells when they have ended. Main thread only.
///
/// Both output pipes are read once, after the child has ended, so that a child which writes more than a pipe holds
/// stands still until it is terminated, and a grandchild that keeps a pipe open holds nobody up.
class ChildProcessLauncher {
public:
    using Ended = std::function<void(ChildProcessEnd end)>;

    virtual ~ChildProcessLauncher() = default;

    /// Starts \a command. \a ended is called exactly once, from the event loop, never inside launch(), also where the
    /// start fails; a dropped ChildProcess still reports.
    virtual std::unique_ptr<ChildProcess> launch(ChildProcessCommand command, Ended ended) = 0;
};

} // namespace brindle
