#include "base/Spawn.h"
#include "base/BlockOn.h"
#include "base/Completion.h"
#include "base/Error.h"
#include "base/Log.h"
#include "support/Patience.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace brindle {
namespace {

using namespace std::chrono_literals;

QCoro::Task<> note(std::vector<std::string> *notes, std::string text)
{
    notes->push_back(text);
    co_return;
}

QCoro::Task<> fail(std::string description)
{
    throw Error("Test", 1, std::move(description));
    co_return;
}

QCoro::Task<> await(Completion<int> completion, std::vector<int> *results)
{
    results->push_back(co_await completion);
}

TEST(Spawn, BeginsAtTheNextTurnAndNotInsideTheCaller)
{
    std::vector<std::string> notes;

    auto task = spawn([&] { return note(&notes, "task"); });
    notes.emplace_back("caller");
    blockOn(std::move(task), kPatience);

    EXPECT_EQ(notes, (std::vector<std::string>{"caller", "task"}));
}

TEST(Spawn, LogsWhatTheTaskThrows)
{
    std::vector<std::string> lines;
    auto before = Log::setSink([&](std::string_view line) { lines.emplace_back(line); });

    blockOn(spawn([] { return fail("no luck"); }), kPatience);

    Log::setSink(before);
    EXPECT_EQ(lines, (std::vector<std::string>{"❌ A background task failed: no luck"}));
}

TEST(JoinAll, AwaitsTheRestBeforeItThrowsTheFirstError)
{
    const Completion<int> completion;
    std::vector<int> results;
    std::vector<QCoro::Task<>> tasks;
    tasks.push_back(fail("first"));
    tasks.push_back(await(completion, &results));
    tasks.push_back(fail("second"));
    completion.complete(7);

    try {
        blockOn(joinAll(std::move(tasks)), kPatience);
        FAIL() << "the error was lost";
    } catch (const Error &error) {
        EXPECT_EQ(error.localizedDescription(), "first");
    }
    EXPECT_EQ(results, (std::vector<int>{7}));
}

TEST(Completion, TakesTheFirstResultAndBringsItOutsideComplete)
{
    const Completion<int> completion;
    std::vector<int> results;
    auto task = await(completion, &results);

    completion.complete(1);
    completion.complete(2);
    EXPECT_TRUE(results.empty());
    blockOn(std::move(task), kPatience);

    EXPECT_EQ(results, (std::vector<int>{1}));
}

TEST(BlockOn, ThrowsAgainWhatTheTaskThrew)
{
    EXPECT_THROW(blockOn(fail("bad"), kPatience), Error);
}

TEST(BlockOn, GivesUpAfterItsTimeLimit)
{
    const Completion<int> completion;
    std::vector<int> results;

    EXPECT_THROW(blockOn(await(completion, &results), 1ms), Error);

    completion.complete(1); // the task itself goes on, and ends
    QCoreApplication::processEvents();
    EXPECT_EQ(results, (std::vector<int>{1}));
}

} // namespace
} // namespace brindle
