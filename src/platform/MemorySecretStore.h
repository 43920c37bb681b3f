#pragma once

#include "platform/SecretStore.h"

#include <map>

namespace brindle {

/// Secrets that end with the object: for simulated machines, whose programs must never be handed a real password.
class MemorySecretStore final : public SecretStore {
public:
    [[nodiscard]] int add(const SecretKey &key, const Secret &secret) override;
    [[nodiscard]] std::optional<Secret> find(const SecretKey &key) override;
    int remove(const SecretKey &key) override;

private:
    std::map<SecretKey, Secret> m_items;
};

} // namespace brindle
