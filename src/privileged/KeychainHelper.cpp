#include "privileged/KeychainHelper.h"

#include "base/DefaultsKeys.h"
#include "base/Log.h"
#include "base/Text.h"

#include <array>
#include <chrono>
#include <utility>

namespace brindle {

namespace {

// The service names of earlier versions, the one to be preferred first.
constexpr std::array kLegacyServices{"com.orlane.Tansy", "com.brindle.adminauth"};

// The first dialog waits until the application's own window or icon stands.
constexpr std::chrono::seconds kPauseBeforeFirstPrompt{1};

SecurePrompt passwordPrompt()
{
    return {.alert = {.messageText = "Administrator Access Required",
                      .informativeText = "Brindle needs administrator privileges to mount/unmount EFI partitions. "
                                         "Please enter your administrator password.",
                      .style = AlertStyle::informational,
                      .buttons = {"OK", "Cancel"}},
            .placeholder = "Administrator Password"};
}

Alert refusalAlert()
{
    return {.messageText = "Authentication Failed",
            .informativeText = "The password you entered is incorrect or does not have administrator privileges."};
}

Alert missingPasswordAlert()
{
    return {.messageText = "Administrator Password Required",
            .informativeText = "Brindle requires administrator privileges to mount/unmount EFI partitions. You can "
                               "set this up later in Settings."};
}

} // namespace

KeychainHelper::KeychainHelper(Surroundings surroundings)
    : m_surroundings(std::move(surroundings)),
      m_processes(m_surroundings.childProcesses, m_surroundings.scheduler)
{
    if (!m_surroundings.isRoot && !m_surroundings.isSecretStoreTemporary)
        migrateLegacyPasswords();
}

bool KeychainHelper::storePassword(const Secret &password)
{
    if (password.isEmpty() || !isUtf8(password.view()))
        return false;
    m_surroundings.secretStore.remove(key());
    const int status = m_surroundings.secretStore.add(key(), password);
    if (status != SecretStore::kDone) {
        Log::line("❌ Failed to store password: {}", status);
        return false;
    }
    Log::line("✅ Admin password stored in keychain");
    return true;
}

std::optional<Secret> KeychainHelper::retrievePassword() const
{
    return passwordOf(m_surroundings.service);
}

bool KeychainHelper::deletePassword()
{
    const int status = m_surroundings.secretStore.remove(key());
    if (status != SecretStore::kDone && status != SecretStore::kItemNotFound)
        return false;
    Log::line("✅ Admin password deleted from keychain");
    return true;
}

QCoro::Task<bool> KeychainHelper::promptForPassword()
{
    auto prompt = m_surroundings.dialogs.securePrompt(passwordPrompt());
    const std::optional<Secret> password = co_await prompt;
    if (!password)
        co_return false;
    auto validation = validateAdminPassword(*password);
    const bool isRight = co_await validation;
    if (isRight)
        co_return storePassword(*password);
    auto refusal = m_surroundings.dialogs.alert(refusalAlert());
    co_await refusal;
    co_return false;
}

QCoro::Task<> KeychainHelper::promptForMissingPassword()
{
    if (!m_surroundings.isRoot && !retrievePassword()) {
        auto pause = m_surroundings.scheduler.sleep(kPauseBeforeFirstPrompt);
        co_await pause;
        auto prompt = promptForPassword();
        const bool isStored = co_await prompt;
        if (!isStored) {
            auto alert = m_surroundings.dialogs.alert(missingPasswordAlert());
            co_await alert;
        }
    }
    if (!m_surroundings.userDefaults.boolForKey(DefaultsKeys::kHasLaunchedBefore))
        m_surroundings.userDefaults.set(DefaultsKeys::kHasLaunchedBefore, true);
}

SecretKey KeychainHelper::key() const
{
    return {m_surroundings.service, kAccount};
}

std::optional<Secret> KeychainHelper::passwordOf(const std::string &service) const
{
    std::optional<Secret> password = m_surroundings.secretStore.find({service, kAccount});
    return password && isUtf8(password->view()) ? std::move(password) : std::nullopt;
}

std::optional<Secret> KeychainHelper::readLegacyPassword(const std::string &service) const
{
    return passwordOf(service);
}

// A password that was carried over is not proved: a wrong one is refused by sudo at its first use.
void KeychainHelper::migrateLegacyPasswords()
{
    if (m_surroundings.userDefaults.boolForKey(DefaultsKeys::kHasRunBundleIDMigration)) {
        Log::line("✅ Keychain migration already completed");
        return;
    }
    Log::line("🔄 Checking for legacy keychain passwords to migrate...");
    if (storeLegacyPassword())
        Log::line("   ✅ Migrated password to new service: {}", m_surroundings.service);
    else
        Log::line("   ℹ️ No legacy passwords found to migrate");
    m_surroundings.userDefaults.set(DefaultsKeys::kHasRunBundleIDMigration, true);
    m_surroundings.userDefaults.synchronize();
}

bool KeychainHelper::storeLegacyPassword()
{
    for (const char *service : kLegacyServices) {
        if (const std::optional<Secret> password = readLegacyPassword(service)) {
            Log::line("   ✅ Found password in legacy service: {}", service);
            if (storePassword(*password))
                return true;
        }
    }
    return false;
}

} // namespace brindle
