#pragma once

#include "base/CancellationToken.h"
#include "platform/ChildProcess.h"
#include "platform/Scheduler.h"

#include <QCoroTask>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// Runs the platform's tools without privileges: the one way to read what a tool prints.
///
/// Calls are independent and may overlap. Main thread only.
class ToolRunner {
public:
    using Environment = std::map<std::string, std::string>;

    /// How long a tool may take; one that is still running is asked to end then, and there is no harder way.
    static constexpr std::chrono::seconds kTimeLimit{30};

    ToolRunner(ChildProcessLauncher &launcher, Scheduler &scheduler); ///< Both outlive the runner.
    virtual ~ToolRunner() = default;
    ToolRunner(const ToolRunner &) = delete;
    ToolRunner &operator=(const ToolRunner &) = delete;

    /// The standard output of the tool at \a path, run with \a args; empty where it is no UTF-8.
    ///
    /// The entries of \a environment replace those of this process or are added to them. Cancelling \a token ends a
    /// running tool, and the call then ends as the tool did; a token that is cancelled already ends nothing. The output
    /// must fit a pipe (1 MiB where the kernel allows it): a tool that prints more stands still until its time is up.
    ///
    /// Throws an Error of domain "CommandError" for a status other than 0: its code is the status, or the number of the
    /// signal that ended the tool, its description the standard error, "Unknown error" where that is no UTF-8. Throws
    /// the system's own error where the tool can't be started or its output not be read.
    virtual QCoro::Task<std::string> run(std::string path, std::vector<std::string> args,
                                         std::optional<Environment> environment = {}, CancellationToken token = {});

private:
    ChildProcessLauncher &m_launcher;
    Scheduler &m_scheduler;
};

} // namespace brindle
