#pragma once

#include "base/Error.h"

#include <QCoroTask>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <exception>
#include <memory>
#include <optional>
#include <type_traits>

namespace brindle {

namespace detail {

template <typename T>
using Held = std::conditional_t<std::is_void_v<T>, bool, T>;

template <typename T>
struct Outcome {
    std::optional<Held<T>> value;
    std::exception_ptr error;
    [[nodiscard]] bool isThere() const { return value || error; }
};

template <typename T>
QCoro::Task<> carryOut(QCoro::Task<T> task, std::shared_ptr<Outcome<T>> outcome, std::shared_ptr<QEventLoop> loop)
{
    try {
        if constexpr (std::is_void_v<T>) {
            co_await task;
            outcome->value = true;
        } else {
            outcome->value = co_await task;
        }
    } catch (...) {
        outcome->error = std::current_exception();
    }
    loop->quit();
}

} // namespace detail

/// Runs the event loop until \a task ends; gives its result or throws what it threw.
///
/// For tests and for the main of a command-line program: application code never nests an event loop. With a
/// \a timeLimit it throws an Error of domain "BlockOn" once that has passed; the task itself is not stopped.
template <typename T>
T blockOn(QCoro::Task<T> task, std::optional<std::chrono::milliseconds> timeLimit = {})
{
    const auto outcome = std::make_shared<detail::Outcome<T>>();
    const auto loop = std::make_shared<QEventLoop>();
    const auto carrier = detail::carryOut(std::move(task), outcome, loop);

    if (!outcome->isThere()) {
        if (timeLimit)
            QTimer::singleShot(*timeLimit, loop.get(), [loop] { loop->quit(); });
        loop->exec();
    }
    if (outcome->error)
        std::rethrow_exception(outcome->error);
    if (!outcome->value)
        throw Error("BlockOn", 1, "The task did not end in its time.");
    if constexpr (!std::is_void_v<T>)
        return std::move(*outcome->value);
}

} // namespace brindle
