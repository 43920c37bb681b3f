#include "views/EFICopyFlow.h"

#include "base/Log.h"
#include "base/Spawn.h"
#include "base/Text.h"
#include "records/FindDisk.h"

#include <exception>
#include <utility>

namespace brindle {

EFICopyFlow::EFICopyFlow(EFICopyManager &manager, PublishedDisks disks, Scheduler &scheduler, QObject *parent)
    : QObject(parent),
      m_manager(manager),
      m_disks(std::move(disks)),
      m_delayedCalls(scheduler)
{
    connect(&manager, &EFICopyManager::isOperationInProgressChanged, this, &EFICopyFlow::closeAfterSuccess);
    connect(&manager, &EFICopyManager::showConfirmationDialogChanged, this, &EFICopyFlow::cancelUnseenQuestion);
}

void EFICopyFlow::onCopyEFI(const PhysicalDisk &disk, const EFIPartition &efiPartition)
{
    if (disk.efiPartitions.empty() || !efiPartition.isMounted)
        return;
    auto destinations = EFICopyManager::availableDestinations(m_disks(), disk, efiPartition);
    if (destinations.empty()) {
        begin([this, disk, efiPartition] { return copyToLocation(disk, efiPartition); });
        return;
    }
    m_selectedSourceDisk = disk;
    m_selectedSourceEFI = efiPartition;
    m_availableDestinations = std::move(destinations);
    m_showingDestinationSelection = true;
    Q_EMIT changed();
}

void EFICopyFlow::onDestinationSelected(const EFICopyManager::EFIPartitionInfo &destination,
                                        bool overwriteWithoutBackup)
{
    if (!m_selectedSourceDisk || !m_selectedSourceEFI)
        return;
    begin([this, disk = *m_selectedSourceDisk, efi = *m_selectedSourceEFI, destination, overwriteWithoutBackup] {
        return copy(disk, efi, destination, overwriteWithoutBackup);
    });
}

void EFICopyFlow::onCancel()
{
    m_showingDestinationSelection = false;
    m_selectedSourceDisk.reset();
    m_selectedSourceEFI.reset();
    m_availableDestinations.clear();
    cancelUnseenQuestion();
    Q_EMIT changed();
}

/// Begins \a copy at the next turn of the event loop, and no other one until then.
void EFICopyFlow::begin(std::function<QCoro::Task<>()> copy)
{
    if (std::exchange(m_isAboutToBegin, true))
        return;
    spawn([this, copy = std::move(copy)] {
        m_isAboutToBegin = false;
        return copy();
    });
}

void EFICopyFlow::cancelUnseenQuestion()
{
    if (!m_manager.showConfirmationDialog() || m_showingDestinationSelection)
        return;
    const auto onCancel = m_manager.confirmationData().value().onCancel; // a copy: it ends the question
    onCancel();
}

QCoro::Task<> EFICopyFlow::copy(PhysicalDisk sourceDisk, EFIPartition sourceEFI,
                                EFICopyManager::EFIPartitionInfo destination, bool overwriteWithoutBackup)
{
    const PhysicalDisk *disk = findDisk(m_disks(), destination.diskIdentifier);
    if (!disk)
        co_return;
    try {
        auto copy = m_manager.copyEFI(sourceDisk, sourceEFI, *disk, destination.efiPartition, overwriteWithoutBackup);
        co_await copy;
    } catch (const std::exception &error) {
        Log::line("EFI copy failed: {}", error.what());
    }
}

QCoro::Task<> EFICopyFlow::copyToLocation(PhysicalDisk disk, EFIPartition efiPartition)
{
    try {
        auto copy = m_manager.copyEFIToLocation(disk, efiPartition);
        co_await copy;
    } catch (const std::exception &error) {
        Log::line("EFI copy to location failed: {}", error.what());
    }
}

void EFICopyFlow::closeAfterSuccess()
{
    if (m_manager.isOperationInProgress() || !contains(m_manager.operationStatus(), "successfully"))
        return;
    m_delayedCalls.after(kAutoClose, [this] {
        if (!m_manager.isOperationInProgress())
            onCancel();
    });
}

} // namespace brindle
