#include "records/ChildProcessRunner.h"

#include "base/Completion.h"
#include "base/Text.h"

#include <memory>
#include <utility>

namespace brindle {

ChildProcessRunner::ChildProcessRunner(ChildProcessLauncher &launcher, Scheduler &scheduler)
    : m_launcher(launcher),
      m_scheduler(scheduler)
{
}

QCoro::Task<ChildProcessEnd> ChildProcessRunner::run(ChildProcessCommand command, Scheduler::Duration timeLimit,
                                                     CancellationToken token) const
{
    const Completion<ChildProcessEnd> ended;
    const std::unique_ptr<ChildProcess> child =
        m_launcher.launch(std::move(command), [ended](ChildProcessEnd end) { ended.complete(std::move(end)); });
    const auto terminate = [&child] { child->terminate(); };
    const auto cancellation = token.onCancel(terminate);
    const auto timer = child->isRunning() ? m_scheduler.after(timeLimit, terminate) : nullptr;

    ChildProcessEnd end = co_await ended;
    co_return end;
}

std::string standardOutputOf(ChildProcessEnd end, const std::string &errorDomain)
{
    if (end.failure)
        throw *end.failure;
    if (end.terminationStatus != 0) {
        std::string description = isUtf8(end.standardError) ? std::move(end.standardError) : "Unknown error";
        throw Error(errorDomain, end.terminationStatus, std::move(description));
    }
    return isUtf8(end.standardOutput) ? std::move(end.standardOutput) : std::string();
}

} // namespace brindle
