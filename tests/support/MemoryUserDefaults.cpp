#include "support/MemoryUserDefaults.h"

#include <utility>

namespace brindle {

std::optional<PropertyValue> MemoryUserDefaults::object(const std::string &key) const
{
    const std::lock_guard guard(m_mutex);
    const auto found = m_values.find(key);
    return found == m_values.end() ? std::nullopt : std::optional(found->second);
}

void MemoryUserDefaults::set(const std::string &key, PropertyValue value)
{
    {
        const std::lock_guard guard(m_mutex);
        const auto found = m_values.find(key);
        if (found != m_values.end() && found->second == value)
            return;
        m_values.insert_or_assign(key, std::move(value));
    }
    announce(key);
}

void MemoryUserDefaults::remove(const std::string &key)
{
    {
        const std::lock_guard guard(m_mutex);
        if (m_values.erase(key) == 0)
            return;
    }
    announce(key);
}

void MemoryUserDefaults::announce(const std::string &key)
{
    QMetaObject::invokeMethod(this, [this, key] { Q_EMIT valueChanged(key); });
}

} // namespace brindle
