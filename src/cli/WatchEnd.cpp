#include "cli/WatchEnd.h"

#include "base/BlockOn.h"
#include "base/Completion.h"
#include "base/Log.h"
#include "cli/Terminal.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdio>
#include <utility>

namespace brindle {

namespace {

using namespace std::chrono_literals;

constexpr Scheduler::Duration kPatienceWithMounts = 10s; // the kernel may be checking the file system
constexpr Scheduler::Duration kPatienceWithScans = 2s;

QCoro::Task<> complete(Completion<bool> end, QCoro::Task<> work)
{
    co_await work;
    end.complete(true);
}

QCoro::Task<bool> awaited(Completion<bool> end)
{
    co_return co_await end;
}

/// Waits for the end of \a work, but not for ever: whether it has ended.
bool hasEnded(QCoro::Task<> work, Scheduler &clock, Scheduler::Duration patience)
{
    const Completion<bool> end;
    const auto timer = clock.after(patience, [end] { end.complete(false); });
    const auto waiting = complete(end, std::move(work));
    return blockOn(awaited(end));
}

} // namespace

void endWatch(Assembly &assembly, TerminalDialogs &dialogs, Scheduler &clock)
{
    assembly.diskEventMonitor().stopMonitoring();
    dialogs.close(); // a mount that waits for the password is not waited for
    if (!hasEnded(assembly.diskManager().autoMountsEnded(), clock, kPatienceWithMounts))
        tell(stderr, "brindlectl: A mount goes on without being watched\n");
    assembly.toolRunner().endAll();
    if (!hasEnded(assembly.diskManager().stopScan(), clock, kPatienceWithScans))
        Log::line("⚠️ The scan does not end");
}

} // namespace brindle
