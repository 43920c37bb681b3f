#include "platform/linux/LinuxSecretStore.h"

#include "platform/linux/KernelKeyringStore.h"
#include "platform/linux/SecretServiceModule.h"

#include "base/Log.h"

#include <utility>

#include <dlfcn.h>

namespace brindle {

namespace {

/// The store that the module at \a path gives; null where it can't be loaded or no service answers.
std::unique_ptr<SecretStore> storeOfModule(const std::filesystem::path &path)
{
    void *const module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    void *const function = module ? dlsym(module, "brindleSecretService") : nullptr;
    if (!function) {
        Log::line("⚠️ The module for the Secret Service can't be loaded: {}", dlerror());
        return nullptr;
    }
    return std::unique_ptr<SecretStore>(reinterpret_cast<decltype(&brindleSecretService)>(function)());
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
