#include "base/CancellationToken.h"

#include <map>
#include <utility>

namespace brindle {

struct CancellationToken::State {
    bool cancelled = false;
    std::uint64_t lastId = 0;
    std::map<std::uint64_t, std::function<void()>> callbacks;
};

CancellationToken CancellationToken::cancellable()
{
    return CancellationToken(std::make_shared<State>());
}

bool CancellationToken::isCancelled() const
{
    return m_state && m_state->cancelled;
}

CancellationToken::Registration CancellationToken::onCancel(std::function<void()> callback) const
{
    if (!m_state || m_state->cancelled)
        return {};
    const std::uint64_t id = ++m_state->lastId;
    m_state->callbacks.emplace(id, std::move(callback));
    return {m_state, id};
}

void CancellationToken::cancel() const
{
    const std::shared_ptr<State> state = m_state; // a callback may drop the last token
    if (!state || std::exchange(state->cancelled, true))
        return;
    // One at a time from the map itself: a callback may end another's registration.
    while (!state->callbacks.empty()) {
        const auto callback = state->callbacks.extract(state->callbacks.begin());
        callback.mapped()();
    }
}

CancellationToken::Registration &CancellationToken::Registration::operator=(Registration &&other) noexcept
{
    if (this != &other) {
        reset();
        m_state = std::move(other.m_state);
        m_id = other.m_id;
    }
    return *this;
}

CancellationToken::Registration::~Registration()
{
    reset();
}

void CancellationToken::Registration::reset()
{
    if (const std::shared_ptr<State> state = m_state.lock())
        state->callbacks.erase(m_id);
    m_state.reset();
}

} // namespace brindle
