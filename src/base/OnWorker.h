#pragma once

#include "base/Completion.h"

#include <QCoreApplication>
#include <QCoroTask>
#include <QMetaObject>
#include <QThreadPool>

#include <future>
#include <memory>
#include <type_traits>
#include <utility>

namespace brindle {

/// Runs \a work, which blocks, on another thread; gives its result or throws what it threw, back on the main thread.
///
/// The work shares nothing with the main thread but what is made for that. Dropping the task stops nothing, and the
/// process ends only when the work has: what was begun on a disk is ended.
template <typename Work>
QCoro::Task<std::invoke_result_t<Work>> onWorker(Work work)
{
    const auto task = std::make_shared<std::packaged_task<std::invoke_result_t<Work>()>>(std::move(work));
    auto result = task->get_future();
    const Completion<bool> finished;
    // Asked for here: the application forgets its instance before it waits for the workers at its end.
    QThreadPool::globalInstance()->start([task, finished, application = QCoreApplication::instance()] {
        (*task)();
        QMetaObject::invokeMethod(
            application, [finished] { finished.complete(true); }, Qt::QueuedConnection);
    });
    co_await finished;
    co_return result.get();
}

} // namespace brindle
