#pragma once

#include "state/DiskManager.h"

#include "base/BlockOn.h"
#include "support/FakeDialogs.h"
#include "support/FakeLauncher.h"
#include "support/FakeMountNotifier.h"
#include "support/FakeSecretStore.h"
#include "support/FakeToolRunner.h"
#include "support/FakeWorkspace.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/MemoryUserDefaults.h"
#include "support/Patience.h"
#include "sysinfo/SystemInfoDetector.h"

#include <QCoreApplication>

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// A manager whose tools answer by the test's word and whose boot information is known: that there is none.
class DiskManagerFixture : public testing::Test {
protected:
    DiskManagerFixture() { blockOn(systemInfo.refreshBootInfo(), kPatience); }

    /// Made at the first call, so that a test can fill the user defaults before.
    DiskManager &manager()
    {
        if (!m_manager)
            m_manager.emplace(surroundings(systemInfo));
        return *m_manager;
    }

    DiskManager::Surroundings surroundings(SystemInfoDetector &systemInfoDetector)
    {
        return {.tools = tools,
                .paths = paths,
                .defaults = defaults,
                .scheduler = clock,
                .systemInfoDetector = systemInfoDetector,
                .keychain = keychain(),
                .efiOperations = efiOperations(),
                .workspace = workspace,
                .unfinishedWork = unfinishedWork};
    }

    /// Made at the first call; its migration is over and told to nobody.
    KeychainHelper &keychain()
    {
        if (!m_keychain) {
            const LogCapture quiet;
            m_keychain.emplace(KeychainHelper::Surroundings{.secretStore = secretStore,
                                                            .dialogs = dialogs,
                                                            .childProcesses = launcher,
                                                            .scheduler = clock,
                                                            .userDefaults = m_keychainDefaults,
                                                            .toolPaths = paths,
                                                            .unfinishedWork = unfinishedWork});
        }
        return *m_keychain;
    }

    EFIOperations &efiOperations()
    {
        if (!m_efiOperations)
            m_efiOperations.emplace(tools, paths, keychain(), notifier, workspace, defaults);
        return *m_efiOperations;
    }

    /// Lets the event loop work until \a commandLine was run.
    void awaitCall(const std::string &commandLine)
    {
        while (std::find(tools.calls().begin(), tools.calls().end(), commandLine) == tools.calls().end())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    void scan() { blockOn(manager().startScan(false), kPatience); }

    /// Answers the questions of a scan for whole disks without partitions.
    void plugIn(const std::vector<std::string> &identifiers)
    {
        std::string list;
        for (const std::string &identifier : identifiers) {
            list += "/dev/" + identifier + " (internal, physical):\n";
            tools.answer("/usr/sbin/diskutil info " + identifier, "   Whole:   Yes\n   Protocol:   SATA\n");
        }
        tools.answer("/usr/sbin/diskutil list physical", list);
        tools.answer("/usr/sbin/diskutil list", list);
        tools.answer("/bin/df -k", "");
    }

    LogCapture log;
    ManualClock clock;
    MemoryUserDefaults defaults;
    ToolPaths paths = ToolPaths::system();
    std::vector<std::string> journal; ///< What the notifier and the workspace note.
    FakeToolRunner tools;
    FakeToolRunner bootTools;
    FakeLauncher launcher;
    FakeSecretStore secretStore;
    FakeDialogs dialogs;
    FakeMountNotifier notifier{journal};
    FakeWorkspace workspace{journal};
    UnfinishedWork unfinishedWork;
    SystemInfoDetector systemInfo{bootTools, ToolPaths::system()};

private:
    MemoryUserDefaults m_keychainDefaults;
    std::optional<KeychainHelper> m_keychain;
    std::optional<EFIOperations> m_efiOperations;
    std::optional<DiskManager> m_manager;
};

} // namespace brindle
