#pragma once

#include "TestFileManager.h"

#include "base/BlockOn.h"
#include "efi/EFICopyError.h"
#include "efi/EFICopyManager.h"
#include "support/FakeDialogs.h"
#include "support/FileTree.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/MountedPlaces.h"
#include "support/Patience.h"
#include "support/WaitUntil.h"

#include <QTemporaryDir>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace brindle {

using Statuses = std::vector<std::string>;
using Progresses = std::vector<double>;

/// Two disks with a mounted EFI partition each, real folders, and all that the manager publishes.
class EFICopyManagerFixture {
protected:
    EFICopyManagerFixture()
    {
        source = disk("disk1", "Source Disk", "disk1s1", "OPENCORE", folder() / "source");
        destination = disk("disk2", "Stick: A/B", "disk2s1", "", folder() / "destination");
        std::filesystem::create_directories(folder() / "source");
        std::filesystem::create_directories(folder() / "destination");
        watch();
    }

    [[nodiscard]] std::filesystem::path folder() const { return m_folder.path().toStdString(); }
    [[nodiscard]] std::filesystem::path sourceEFI() const { return folder() / "source/EFI"; }
    [[nodiscard]] std::filesystem::path destinationEFI() const { return folder() / "destination/EFI"; }
    [[nodiscard]] std::filesystem::path backup() const { return folder() / "backup"; }

    void writeOldEFI() const
    {
        writeFile(destinationEFI() / "OLD/old.efi", "old");
        writeFile(destinationEFI() / ".old", "hidden");
    }

    /// What the copy threw.
    std::optional<Error> copy(bool overwriteWithoutBackup = false)
    {
        return errorOf(manager.copyEFI(source, source.efiPartitions.front(), destination,
                                       destination.efiPartitions.front(), overwriteWithoutBackup));
    }

    std::optional<Error> copyToLocation()
    {
        return errorOf(manager.copyEFIToLocation(source, source.efiPartitions.front()));
    }

    /// Presses a button of the dialog, and waits for the end of the operation.
    void choose(std::function<void()> EFICopyManager::ConfirmationData::*choice)
    {
        const auto press = (*manager.confirmationData()).*choice;
        press();
        waitUntil([this] { return !manager.showConfirmationDialog() && !manager.isOperationInProgress(); });
    }

    void forget()
    {
        statuses.clear();
        progresses.clear();
        trace.clear();
    }

    ManualClock clock;
    FakeDialogs dialogs;
    TestFileManager files;
    UnfinishedWork unfinishedWork;
    MountedPlaces places;
    EFICopyManager manager{files, dialogs, clock, unfinishedWork, places.look()};
    PhysicalDisk source;
    PhysicalDisk destination;
    LogCapture log;

    // As they were published, since forget().
    Statuses statuses;
    Progresses progresses;
    std::vector<std::string> trace; ///< All fields as "status X", "progress 0.1", "in progress", "ended" …

private:
    static PhysicalDisk disk(std::string identifier, std::string name, std::string partition, std::string volume,
                             const std::filesystem::path &mountPoint)
    {
        return {.identifier = std::move(identifier),
                .name = std::move(name),
                .efiPartitions = {{.identifier = std::move(partition),
                                   .isMounted = true,
                                   .mountPoint = mountPoint.string(),
                                   .volumeName = std::move(volume)}}};
    }

    static std::optional<Error> errorOf(QCoro::Task<> task)
    {
        try {
            blockOn(std::move(task), kPatience);
        } catch (const Error &error) {
            return error;
        }
        return std::nullopt;
    }

    void watch()
    {
        QObject::connect(&manager, &EFICopyManager::operationStatusChanged, [this] {
            statuses.push_back(manager.operationStatus());
            trace.push_back(fmt::format("status {}", manager.operationStatus()));
        });
        QObject::connect(&manager, &EFICopyManager::operationProgressChanged, [this] {
            progresses.push_back(manager.operationProgress());
            trace.push_back(fmt::format("progress {}", manager.operationProgress()));
        });
        QObject::connect(&manager, &EFICopyManager::isOperationInProgressChanged,
                         [this] { trace.emplace_back(manager.isOperationInProgress() ? "in progress" : "ended"); });
        QObject::connect(&manager, &EFICopyManager::isCancelledChanged,
                         [this] { trace.emplace_back(manager.isCancelled() ? "cancelled" : "not cancelled"); });
        QObject::connect(&manager, &EFICopyManager::showConfirmationDialogChanged,
                         [this] { trace.emplace_back(manager.showConfirmationDialog() ? "dialog" : "no dialog"); });
        QObject::connect(&manager, &EFICopyManager::confirmationDataChanged,
                         [this] { trace.emplace_back(manager.confirmationData() ? "data" : "no data"); });
    }

    QTemporaryDir m_folder{QStringLiteral("/dev/shm/brindle-XXXXXX")}; // in memory: each copy is flushed
};

class EFICopyManagerTest : public testing::Test, public EFICopyManagerFixture {};

} // namespace brindle
