#pragma once

#include "platform/SecretStore.h"

#include <memory>

namespace brindle {

/// The Secret Service of the desktop, or the kernel's keyring where none answers at the first call; the log tells of
/// that once.
class LinuxSecretStore final : public SecretStore {
public:
    [[nodiscard]] int add(const SecretKey &key, const Secret &secret) override;
    [[nodiscard]] std::optional<Secret> find(const SecretKey &key) override;
    int remove(const SecretKey &key) override;

private:
    [[nodiscard]] SecretStore &store();

    std::unique_ptr<SecretStore> m_store; ///< Chosen at the first call.
};

} // namespace brindle
