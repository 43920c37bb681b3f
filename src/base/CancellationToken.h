#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace brindle {

/// Says to whoever holds a copy that the work it belongs to is no longer wanted.
///
/// Handed down as a last parameter. A default-made token is never cancelled. Main thread only.
class CancellationToken {
    struct State;

public:
    /// Keeps an onCancel callback installed; its end takes the callback out.
    class Registration {
    public:
        Registration() = default;
        Registration(Registration &&other) noexcept = default;
        Registration &operator=(Registration &&other) noexcept;
        ~Registration();

    private:
        friend class CancellationToken;
        Registration(std::weak_ptr<State> state, std::uint64_t id) : m_state(std::move(state)), m_id(id) {}
        void reset();

        std::weak_ptr<State> m_state;
        std::uint64_t m_id = 0;
    };

    CancellationToken() = default;

    [[nodiscard]] static CancellationToken cancellable();

    [[nodiscard]] bool isCancelled() const;

    /// Calls \a callback once, inside cancel(). A token that is cancelled already never calls it.
    [[nodiscard]] Registration onCancel(std::function<void()> callback) const;

    /// Cancels every copy of this token. Nothing happens the second time, or to a default-made token.
    void cancel() const;

private:
    explicit CancellationToken(std::shared_ptr<State> state) : m_state(std::move(state)) {}

    std::shared_ptr<State> m_state;
};

} // namespace brindle
