#include "platform/linux/LinuxSecretStore.h"

#include "platform/linux/KernelKeyringStore.h"
#include "platform/linux/SecretServiceStore.h"

#include "base/Log.h"

namespace brindle {

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
    if (!m_store && SecretServiceStore::isAvailable())
        m_store = std::make_unique<SecretServiceStore>();
    if (!m_store) {
        Log::line("⚠️ No Secret Service answers: the password is kept in the kernel's keyring, until the next restart "
                  "at most");
        m_store = std::make_unique<KernelKeyringStore>();
    }
    return *m_store;
}

} // namespace brindle
