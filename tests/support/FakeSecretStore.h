#pragma once

#include "platform/MemorySecretStore.h"

#include <deque>
#include <string>
#include <vector>

namespace brindle {

/// A secret store in memory that remembers its calls and can refuse them.
class FakeSecretStore : public SecretStore {
public:
    /// "add SERVICE ACCOUNT", "find …" and "remove …", in order.
    std::vector<std::string> calls;

    /// What the next calls of add() and remove() give without doing anything, in order.
    std::deque<int> addFailures;
    std::deque<int> removeFailures;

    [[nodiscard]] int add(const SecretKey &key, const Secret &secret) override;
    [[nodiscard]] std::optional<Secret> find(const SecretKey &key) override;
    int remove(const SecretKey &key) override;

private:
    MemorySecretStore m_items;
};

} // namespace brindle
