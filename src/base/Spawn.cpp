#include "base/Spawn.h"

#include "base/Completion.h"
#include "base/Log.h"

#include <exception>
#include <utility>

namespace brindle {

QCoro::Task<> spawn(std::function<QCoro::Task<>()> work)
{
    Completion<bool> nextTurn;
    nextTurn.complete(true);
    co_await nextTurn;
    try {
        auto task = work();
        co_await task;
    } catch (const std::exception &error) {
        Log::line("❌ A background task failed: {}", error.what());
    }
}

QCoro::Task<> joinAll(std::vector<QCoro::Task<>> tasks)
{
    std::exception_ptr firstError;
    for (auto &task : tasks) {
        try {
            co_await task;
        } catch (...) {
            if (!firstError)
                firstError = std::current_exception();
        }
    }
    if (firstError)
        std::rethrow_exception(firstError);
}

} // namespace brindle
