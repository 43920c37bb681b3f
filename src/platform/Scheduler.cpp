#include "platform/Scheduler.h"

#include "base/Completion.h"

namespace brindle {

QCoro::Task<> Scheduler::sleep(Duration duration, CancellationToken token)
{
    const Completion<bool> over;
    const auto registration = token.onCancel([over] { over.complete(true); });
    if (token.isCancelled())
        co_return;
    const auto timer = after(duration, [over] { over.complete(true); });
    co_await over;
}

} // namespace brindle
