#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace brindle {

/// Notifications inside the process, told by their names alone, between parts that know nothing of one another. Main
/// thread only.
class NotificationCenter {
    struct Observers;

public:
    /// Keeps an observer installed; its end takes it out, also after the centre's.
    class Observation {
    public:
        Observation(std::weak_ptr<Observers> observers, std::uint64_t id) : m_observers(std::move(observers)), m_id(id)
        {
        }
        ~Observation();
        Observation(const Observation &) = delete;
        Observation &operator=(const Observation &) = delete;

    private:
        std::weak_ptr<Observers> m_observers;
        std::uint64_t m_id;
    };

    NotificationCenter();

    /// Calls \a callback at each post of \a name. It may post and observe itself, and end any observation.
    [[nodiscard]] std::unique_ptr<Observation> observe(std::string name, std::function<void()> callback);

    /// Calls those who observe \a name now, in the order in which they began, before it returns.
    void post(std::string_view name) const;

private:
    std::shared_ptr<Observers> m_observers;
};

} // namespace brindle
