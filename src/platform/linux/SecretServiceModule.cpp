#include "platform/linux/SecretServiceModule.h"

#include "platform/linux/SecretServiceStore.h"

#include <memory>

brindle::SecretStore *brindleSecretService()
{
    using brindle::SecretServiceStore;
    return SecretServiceStore::isAvailable() ? std::make_unique<SecretServiceStore>().release() : nullptr;
}
