#pragma once

#include "platform/SecretStore.h"

namespace brindle {

/// Secrets in the desktop's keyring, behind the Secret Service of the session bus: items of its default collection with
/// the attributes "service" and "account". https://specifications.freedesktop.org/secret-service/
///
/// Each call connects anew, so that a service which was started again is found. What is locked stays so: unlocking
/// would ask the user.
class SecretServiceStore final : public SecretStore {
public:
    /// Whether a service answers; it is started where the bus knows how to.
    [[nodiscard]] static bool isAvailable();

    [[nodiscard]] int add(const SecretKey &key, const Secret &secret) override;
    [[nodiscard]] std::optional<Secret> find(const SecretKey &key) override;
    int remove(const SecretKey &key) override;
};

} // namespace brindle
