#pragma once

#include "privileged/KeychainHelper.h"

#include "base/BlockOn.h"
#include "base/DefaultsKeys.h"
#include "support/FakeDialogs.h"
#include "support/FakeLauncher.h"
#include "support/FakeSecretStore.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/MemoryUserDefaults.h"
#include "support/Patience.h"

#include <gtest/gtest.h>

#include <optional>
#include <utility>

namespace brindle {

inline const SecretKey kPasswordKey{"com.orlane.Brindle", "admin-password"};
inline const SecretKey kFirstLegacyKey{"com.orlane.Tansy", "admin-password"};
inline const SecretKey kSecondLegacyKey{"com.brindle.adminauth", "admin-password"};

/// All that a keychain helper works with, as fakes. The migration is done, unless a test takes the key out.
class KeychainFixture : public testing::Test {
protected:
    KeychainFixture() { defaults.set(DefaultsKeys::kHasRunBundleIDMigration, true); }

    [[nodiscard]] KeychainHelper::Surroundings surroundings()
    {
        return {.secretStore = store,
                .dialogs = dialogs,
                .childProcesses = launcher,
                .scheduler = clock,
                .userDefaults = defaults,
                .toolPaths = paths,
                .unfinishedWork = unfinishedWork};
    }

    /// The helper, made at the first call.
    KeychainHelper &keychain()
    {
        if (!m_keychain)
            m_keychain.emplace(surroundings());
        return *m_keychain;
    }

    /// Lets sudo accept or refuse whatever it is given as a proof.
    void sudoAccepts() { launcher.answer("/usr/bin/sudo -S -v", {}); }
    void sudoRefuses()
    {
        launcher.answer("/usr/bin/sudo -S -v",
                        {.terminationStatus = 1, .standardError = "sudo: 1 incorrect password attempt\n"});
    }

    template <typename T>
    static T resultOf(QCoro::Task<T> task)
    {
        return blockOn(std::move(task), kPatience);
    }

    template <typename T>
    static Error errorOf(QCoro::Task<T> task)
    {
        try {
            (void)blockOn(std::move(task), kPatience);
            return {"NoError", 0, ""};
        } catch (const Error &error) {
            return error;
        }
    }

    FakeSecretStore store;
    FakeDialogs dialogs;
    FakeLauncher launcher;
    ManualClock clock;
    MemoryUserDefaults defaults;
    ToolPaths paths = ToolPaths::system();
    UnfinishedWork unfinishedWork;
    LogCapture log;

private:
    std::optional<KeychainHelper> m_keychain;
};

} // namespace brindle
