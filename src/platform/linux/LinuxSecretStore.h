#pragma once

#include "platform/SecretStore.h"

#include <filesystem>
#include <memory>

namespace brindle {

/// The Secret Service of the desktop, or the kernel's keyring where none answers at the first call; the log tells of
/// that once.
///
/// What speaks to the service is a module of its own (SecretServiceModule.h), loaded at the first call: few runs need
/// the password, and the libraries behind it take longer to load than all others but Qt's.
class LinuxSecretStore final : public SecretStore {
public:
    /// \a secretServiceModule is the module's path. Where it can't be loaded, no service answers.
    explicit LinuxSecretStore(std::filesystem::path secretServiceModule);

    [[nodiscard]] int add(const SecretKey &key, const Secret &secret) override;
    [[nodiscard]] std::optional<Secret> find(const SecretKey &key) override;
    int remove(const SecretKey &key) override;

private:
    [[nodiscard]] SecretStore &store();

    std::filesystem::path m_secretServiceModule;
    std::unique_ptr<SecretStore> m_store; ///< Chosen at the first call.
};

} // namespace brindle
