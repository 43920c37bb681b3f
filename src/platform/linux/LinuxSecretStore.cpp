#include "platform/linux/LinuxSecretStore.h"

#include "platform/linux/KernelKeyringStore.h"
#include "platform/linux/ModuleFunction.h"
#include "platform/linux/SecretServiceModule.h"

#include "base/Log.h"

#include <utility>

namespace brindle {

namespace {

/// The store that the module at \a path gives; null where it can't be loaded or no service answers.
std::unique_ptr<SecretStore> storeOfModule(const std::filesystem::path &path)
{
    void *const function = moduleFunction(path, "brindleSecretService", "the Secret Service");
    using Make = decltype(brindleSecretService);
    return std::unique_ptr<SecretStore>(function ? reinterpret_cast<Make *>(function)() : nullptr);
}

} // namespace

LinuxSecretStore::LinuxSecretStore(std::filesystem::path secretServiceModule)
    : m_secretServiceModule(std::move(secretServiceModule))
{
}

int LinuxSecretStore::add(const SecretKey &key, const Secret &secret)
{
    return store().add(key, secret);
}

std::optional<Secret> LinuxSecretStore::find(const SecretKey &key)
{
    return store().find(key);
}

int LinuxSecretStore::remove(const SecretKey &key)
{
    return store().remove(key);
}

SecretStore &LinuxSecretStore::store()
{
    if (!m_store)
        m_store = storeOfModule(m_secretServiceModule);
    if (!m_store) {
        Log::line("⚠️ No Secret Service answers: the password is kept in the kernel's keyring, until the next restart "
                  "at most");
        m_store = std::make_unique<KernelKeyringStore>();
    }
    return *m_store;
}

} // namespace brindle
