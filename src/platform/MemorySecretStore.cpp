#include "platform/MemorySecretStore.h"

namespace brindle {

int MemorySecretStore::add(const SecretKey &key, const Secret &secret)
{
    m_items.insert_or_assign(key, secret);
    return kDone;
}

std::optional<Secret> MemorySecretStore::find(const SecretKey &key)
{
    const auto item = m_items.find(key);
    return item == m_items.end() ? std::nullopt : std::optional<Secret>(item->second);
}

int MemorySecretStore::remove(const SecretKey &key)
{
    return m_items.erase(key) == 0 ? kItemNotFound : kDone;
}

} // namespace brindle
