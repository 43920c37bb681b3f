#include "support/FakeSecretStore.h"

#include <fmt/format.h>

namespace brindle {

namespace {

std::string callOf(const char *operation, const SecretKey &key)
{
    return fmt::format("{} {} {}", operation, key.service, key.account);
}

/// Takes the next failure out; kDone where none is prepared.
int nextOf(std::deque<int> &failures)
{
    if (failures.empty())
        return SecretStore::kDone;
    const int failure = failures.front();
    failures.pop_front();
    return failure;
}

} // namespace

int FakeSecretStore::add(const SecretKey &key, const Secret &secret)
{
    calls.push_back(callOf("add", key));
    const int failure = nextOf(addFailures);
    return failure != kDone ? failure : m_items.add(key, secret);
}

std::optional<Secret> FakeSecretStore::find(const SecretKey &key)
{
    calls.push_back(callOf("find", key));
    return m_items.find(key);
}

int FakeSecretStore::remove(const SecretKey &key)
{
    calls.push_back(callOf("remove", key));
    const int failure = nextOf(removeFailures);
    return failure != kDone ? failure : m_items.remove(key);
}

} // namespace brindle
