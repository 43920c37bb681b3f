#include "platform/linux/KernelKeyringStore.h"

#include <fmt/format.h>

#include <cerrno>

#include <keyutils.h>

namespace brindle {

namespace {

constexpr const char *kType = "user";

std::string descriptionOf(const SecretKey &key)
{
    return fmt::format("{}:{}", key.service, key.account);
}

/// The key's number; below 0 with errno where there is none.
long numberOf(const SecretKey &key)
{
    return keyctl_search(KEY_SPEC_USER_KEYRING, kType, descriptionOf(key).c_str(), 0);
}

} // namespace

KernelKeyringStore::KernelKeyringStore()
{
    // Only who possesses the keyring may read its keys, and a session does not always hold that of its user. Where the
    // link fails, so do the calls, which tell why.
    keyctl_link(KEY_SPEC_USER_KEYRING, KEY_SPEC_PROCESS_KEYRING);
}

int KernelKeyringStore::add(const SecretKey &key, const Secret &secret)
{
    const std::string_view bytes = secret.view();
    const key_serial_t number =
        add_key(kType, descriptionOf(key).c_str(), bytes.data(), bytes.size(), KEY_SPEC_USER_KEYRING);
    return number < 0 ? errno : kDone;
}

std::optional<Secret> KernelKeyringStore::find(const SecretKey &key)
{
    const auto number = static_cast<key_serial_t>(numberOf(key));
    const long size = number < 0 ? -1 : keyctl_read(number, nullptr, 0);
    if (size < 0)
        return std::nullopt;
    Secret secret;
    secret.resize(static_cast<std::size_t>(size));
    if (keyctl_read(number, secret.data(), static_cast<std::size_t>(size)) != size)
        return std::nullopt;
    return secret;
}

int KernelKeyringStore::remove(const SecretKey &key)
{
    const long number = numberOf(key);
    if (number < 0)
        return errno == ENOKEY ? kItemNotFound : errno;
    return keyctl_unlink(static_cast<key_serial_t>(number), KEY_SPEC_USER_KEYRING) < 0 ? errno : kDone;
}

} // namespace brindle
