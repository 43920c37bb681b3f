#include "base/NotificationCenter.h"

#include <vector>

namespace brindle {

struct NotificationCenter::Observers {
    struct Observer {
        std::string name;
        std::function<void()> callback;
    };

    std::map<std::uint64_t, Observer> byID; ///< The identifiers rise, so that the order is that of the beginnings.
    std::uint64_t lastID = 0;
};

NotificationCenter::NotificationCenter() : m_observers(std::make_shared<Observers>()) {}

NotificationCenter::Observation::~Observation()
{
    if (const auto observers = m_observers.lock())
        observers->byID.erase(m_id);
}

std::unique_ptr<NotificationCenter::Observation> NotificationCenter::observe(std::string name,
                                                                             std::function<void()> callback)
{
    const std::uint64_t id = ++m_observers->lastID;
    m_observers->byID.emplace(id, Observers::Observer{std::move(name), std::move(callback)});
    return std::make_unique<Observation>(m_observers, id);
}

void NotificationCenter::post(std::string_view name) const
{
    const auto observers = m_observers; // a callback may end the centre
    std::vector<std::uint64_t> told;
    for (const auto &[id, observer] : observers->byID) {
        if (observer.name == name)
            told.push_back(id);
    }
    for (const std::uint64_t id : told) {
        const auto found = observers->byID.find(id); // one told before may have ended it
        if (found == observers->byID.end())
            continue;
        const auto callback = found->second.callback; // it may end itself
        callback();
    }
}

} // namespace brindle
