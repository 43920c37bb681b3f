#pragma once

#include "base/Secret.h"

#include <optional>
#include <string>

namespace brindle {

/// Which secret is meant: a store holds at most one for each pair.
struct SecretKey {
    std::string service; ///< The program that it belongs to, such as "com.orlane.Brindle".
    std::string account;

    auto operator<=>(const SecretKey &) const = default;
};

/// Keeps secrets for the user who is logged in, readable only while the store is unlocked, and on this machine alone.
///
/// It connects at the first call and never asks the user anything. Calls are synchronous. Main thread only.
class SecretStore {
public:
    // The statuses, with the numbers that macOS gives its own store's; any other is the system's error number.
    static constexpr int kDone = 0;
    static constexpr int kNotAvailable = -25291;          ///< errSecNotAvailable: the store can't be reached.
    static constexpr int kItemNotFound = -25300;          ///< errSecItemNotFound
    static constexpr int kNoDefaultCollection = -25307;   ///< errSecNoDefaultKeychain
    static constexpr int kInteractionNotAllowed = -25308; ///< errSecInteractionNotAllowed: it is locked.

    virtual ~SecretStore() = default;

    /// Keeps \a secret under \a key, in place of what was there.
    [[nodiscard]] virtual int add(const SecretKey &key, const Secret &secret) = 0;

    /// What is kept under \a key; nullopt where there is nothing or the store doesn't give it.
    [[nodiscard]] virtual std::optional<Secret> find(const SecretKey &key) = 0;

    virtual int remove(const SecretKey &key) = 0;
};

} // namespace brindle
