#pragma once

#include <QCoreApplication>
#include <QMetaObject>

#include <coroutine>
#include <memory>
#include <optional>
#include <utility>

namespace brindle {

/// A result that a callback brings and one coroutine awaits.
///
/// complete() may come before or after the await, and once; the waiting coroutine goes on at the next turn of the event
/// loop, never inside complete(). Copies share one result, so that the callback may outlive the coroutine's frame.
/// Main thread only.
template <typename T>
class Completion {
    struct State {
        std::optional<T> value;
        std::coroutine_handle<> waiting;
    };

public:
    Completion() : m_state(std::make_shared<State>()) {}

    /// Brings the result; all but the first call are without effect.
    void complete(T value) const
    {
        if (m_state->value)
            return;
        m_state->value = std::move(value);
        if (m_state->waiting)
            resumeAtNextTurn(m_state);
    }

    [[nodiscard]] bool isComplete() const { return m_state->value.has_value(); }

    auto operator co_await() const
    {
        struct Awaiter {
            std::shared_ptr<State> state;

            bool await_ready() const { return false; }
            void await_suspend(std::coroutine_handle<> handle)
            {
                state->waiting = handle;
                if (state->value)
                    resumeAtNextTurn(state);
            }
            T await_resume() { return std::move(*state->value); }
        };
        return Awaiter{m_state};
    }

private:
    static void resumeAtNextTurn(const std::shared_ptr<State> &state)
    {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [state] { state->waiting.resume(); }, Qt::QueuedConnection);
    }

    std::shared_ptr<State> m_state;
};

} // namespace brindle
