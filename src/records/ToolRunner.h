#pragma once

#include "records/ChildProcessRunner.h"

#include "base/CancellationToken.h"

#include <QCoroTask>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// Runs the platform's command-line tools and gives what they print: the one way to run a tool without privileges.
///
/// Runs are independent and may overlap; none takes a thread. Output is read once, after the tool has ended, so that a
/// tool which prints more than a pipe holds (1 MiB at best, 64 KiB at least) stands still until its time is over.
/// Main thread only.
class ToolRunner {
public:
    ToolRunner(ChildProcessLauncher &launcher, Scheduler &scheduler); ///< Both outlive the runner.
    virtual ~ToolRunner() = default;

    /// Runs the tool at the absolute \a path and gives its standard output; the empty text where that isn't UTF-8.
    ///
    /// The entries of \a environment are added to this process's own and replace those of the same name; without it
    /// the tool inherits the environment untouched. A tool that still runs 30 seconds after its start is asked to end,
    /// and so is a running one when \a token is cancelled; either way the run lasts until the tool has ended, and
    /// reports that end like any other. A token that was cancelled before the call ends nothing.
    ///
    /// Throws Error: the system's own where the tool can't be started or its output not be read; else, where the exit
    /// status isn't 0, domain "CommandError", the status (the number of the signal that ended it) as the code and the
    /// tool's standard error as the description, "Unknown error" where that isn't UTF-8.
    [[nodiscard]] virtual QCoro::Task<std::string> run(
        std::string path, std::vector<std::string> args,
        std::optional<std::map<std::string, std::string>> environment = {}, CancellationToken token = {});

    /// For a program that is about to end: asks all tools that run to end, and lets no further one start. Such a run
    /// throws Error, domain "CommandError" with the number of SIGTERM as the code.
    void endAll();

    /// What run() gives; nullopt where it throws, for questions whose failure only loses the answer.
    [[nodiscard]] QCoro::Task<std::optional<std::string>> outputIfAny(
        std::string path, std::vector<std::string> args,
        std::optional<std::map<std::string, std::string>> environment = {}, CancellationToken token = {});

private:
    ChildProcessRunner m_processes;
    CancellationToken m_end = CancellationToken::cancellable(); ///< Of all runs.
};

} // namespace brindle
