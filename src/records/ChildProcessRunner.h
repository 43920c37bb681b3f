#pragma once

#include "base/CancellationToken.h"
#include "platform/ChildProcess.h"
#include "platform/Scheduler.h"

#include <QCoroTask>

#include <string>

namespace brindle {

/// Runs one child process from its start to its end, within a time limit. Runs are independent and may overlap; none
/// takes a thread. Main thread only.
class ChildProcessRunner {
public:
    ChildProcessRunner(ChildProcessLauncher &launcher, Scheduler &scheduler); ///< Both outlive the runner.

    /// How \a command ended; never throws. A child that still runs \a timeLimit after its start is asked to end, and so
    /// is a running one when \a token is cancelled; either way the run lasts until the child has ended. A token that
    /// was cancelled before the call ends nothing.
    [[nodiscard]] QCoro::Task<ChildProcessEnd> run(ChildProcessCommand command, Scheduler::Duration timeLimit,
                                                   CancellationToken token = {}) const;

private:
    ChildProcessLauncher &m_launcher;
    Scheduler &m_scheduler;
};

/// The standard output of a child that ended with status 0; the empty text where that isn't UTF-8.
///
/// Throws Error: the failure as it is where \a end has one; else, where the status isn't 0, \a errorDomain, the status
/// as the code and the child's standard error as the description, "Unknown error" where that isn't UTF-8.
[[nodiscard]] std::string standardOutputOf(ChildProcessEnd end, const std::string &errorDomain);

} // namespace brindle
