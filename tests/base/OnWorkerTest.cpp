#include "base/OnWorker.h"
#include "base/BlockOn.h"
#include "base/Error.h"
#include "support/Patience.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace brindle {
namespace {

using namespace std::chrono_literals;

QCoro::Task<std::thread::id> threadAfterWork()
{
    auto work = onWorker([] {});
    co_await work;
    co_return std::this_thread::get_id();
}

TEST(OnWorker, WorksOnAnotherThreadAndComesBack)
{
    const auto workedOn = blockOn(onWorker([] { return std::this_thread::get_id(); }), kPatience);
    const auto wentOnOn = blockOn(threadAfterWork(), kPatience);

    EXPECT_NE(workedOn, std::this_thread::get_id());
    EXPECT_EQ(wentOnOn, std::this_thread::get_id());
}

TEST(OnWorker, ThrowsWhatTheWorkThrew)
{
    auto task = onWorker([]() -> int { throw Error("Test", 7, "no"); });

    try {
        blockOn(std::move(task), kPatience);
        FAIL() << "nothing was thrown";
    } catch (const Error &error) {
        EXPECT_EQ(error.code(), 7);
    }
}

TEST(OnWorker, EndsTheWorkOfADroppedTask)
{
    const auto isDone = std::make_shared<std::atomic<bool>>(false);

    {
        const auto dropped = onWorker([isDone] {
            std::this_thread::sleep_for(20ms);
            *isDone = true;
        });
    }
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents(); // the work's end
    QCoreApplication::processEvents(); // what would have gone on after it

    EXPECT_TRUE(*isDone);
}

} // namespace
} // namespace brindle
