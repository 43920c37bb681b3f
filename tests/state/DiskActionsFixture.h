#pragma once

#include "state/DiskManagerFixture.h"

#include "base/DefaultsKeys.h"
#include "support/FileTree.h"
#include "support/Patience.h"

#include <QTemporaryDir>

#include <fmt/format.h>

#include <cstddef>
#include <span>
#include <utility>

namespace brindle {

/// A manager that holds "Stick" (disk2, with the EFI partitions disk2s1 and disk2s3) and "Other" (disk5), on a folder
/// that stands for the machine, with a stored password. What is asked of the machine, shown, told and published stands
/// in one journal, in order.
class DiskActionsFixture : public DiskManagerFixture {
protected:
    DiskActionsFixture()
    {
        paths = ToolPaths::underRoot(root());
        writeFile(root() + "/usr/sbin/diskutil", "");
        (void)secretStore.add({KeychainHelper::kService, KeychainHelper::kAccount}, Secret("open sesame"));
        hold({stick(), other()});
        defaults.set(DefaultsKeys::kPreferencesInitialized, true); // what was never written stays so
        tools.journal = &journal;
        launcher.journal = &journal;
    }

    /// What the manager holds from its making on, as in a process that a switch of the launch mode has started.
    void hold(const std::vector<PhysicalDisk> &disks)
    {
        const std::string json = encodeDisks(disks);
        const auto bytes = std::as_bytes(std::span(json));
        defaults.set(DefaultsKeys::kPersistedDisks, PropertyValue::Data(bytes.begin(), bytes.end()));
        defaults.set(DefaultsKeys::kIsModeSwitchRelaunch, true);
    }

    /// The manager, which notes its publishes from the first call on.
    DiskManager &manager()
    {
        DiskManager &made = DiskManagerFixture::manager();
        if (!std::exchange(m_isObserved, true))
            QObject::connect(&made, &DiskManager::disksChanged, [this] { journal.emplace_back("disks changed"); });
        return made;
    }

    [[nodiscard]] static PhysicalDisk stick()
    {
        return {.identifier = "disk2",
                .name = "Stick",
                .volumeName = "Work",
                .efiPartitions = {{.identifier = "disk2s1"}, {.identifier = "disk2s3"}},
                .diskType = PhysicalDisk::DiskType::physicalExternal};
    }
    [[nodiscard]] static PhysicalDisk other() { return {.identifier = "disk5", .name = "Other"}; }

    [[nodiscard]] std::string root() const { return m_folder.path().toStdString(); }
    [[nodiscard]] std::string mountPoint() const { return root() + "/Volumes/EFI"; }
    [[nodiscard]] std::string diskutil(const std::string &arguments) const
    {
        return fmt::format("{}/usr/sbin/diskutil {}", root(), arguments);
    }
    [[nodiscard]] std::string sudo(const std::string &arguments) const
    {
        return fmt::format("{}/usr/bin/sudo -S -k {}", root(), diskutil(arguments));
    }

    /// What `diskutil info` says from now on; the mounted partition has a folder.
    void answerInfo(const std::string &identifier, bool isMounted)
    {
        if (isMounted)
            std::filesystem::create_directories(mountPoint());
        tools.answer(diskutil("info " + identifier),
                     isMounted ? fmt::format("   Volume Name: EFI\n   Mount Point: {}\n", mountPoint())
                               : "   Volume Name: EFI\n   Mounted: No\n");
    }

    void answerSudo(const std::string &arguments) { launcher.answer(sudo(arguments), {}); }
    void refuseSudo(const std::string &arguments, const std::string &words)
    {
        launcher.answer(sudo(arguments), {.terminationStatus = 1, .standardError = words});
    }

    /// The result of \a task, for which as much time passes as its pauses take.
    template <typename T>
    T finished(QCoro::Task<T> task)
    {
        for (int i = 0; i < 100 && !task.isReady(); ++i)
            clock.advance(std::chrono::milliseconds(100));
        return blockOn(std::move(task), kPatience);
    }

    /// The description of the error that \a task throws; empty where it throws none.
    template <typename T>
    std::string failureOf(QCoro::Task<T> task)
    {
        try {
            finished(std::move(task));
            return "";
        } catch (const Error &error) {
            return error.localizedDescription();
        }
    }

private:
    bool m_isObserved = false;
    QTemporaryDir m_folder;
};

} // namespace brindle
