#pragma once

#include "platform/SecretStore.h"

namespace brindle {

/// Secrets in the kernel's keyring of the user, for machines without a desktop: keys of the type "user", described as
/// "SERVICE:ACCOUNT". See keyrings(7).
///
/// The kernel keeps them in memory that is never swapped; they end with the last process of the user, and with the
/// machine's power. Errors are the kernel's own: EDQUOT for a full keyring, ENOSYS without keyrings.
class KernelKeyringStore final : public SecretStore {
public:
    KernelKeyringStore();

    [[nodiscard]] int add(const SecretKey &key, const Secret &secret) override;
    [[nodiscard]] std::optional<Secret> find(const SecretKey &key) override;
    int remove(const SecretKey &key) override;
};

} // namespace brindle
