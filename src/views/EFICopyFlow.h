#pragma once

#include "efi/EFICopyManager.h"
#include "platform/DelayedCalls.h"

#include <QCoroTask>
#include <QObject>

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

namespace brindle {

/// The way of a copy from the row that asks for it to its end: what popover and window keep of it. Main thread only.
class EFICopyFlow : public QObject {
    Q_OBJECT

public:
    using PublishedDisks = std::function<const std::vector<PhysicalDisk> &()>;

    /// How long a success stays to be read before the dialog closes by itself.
    static constexpr std::chrono::seconds kAutoClose{2};

    /// All arguments outlive the flow; \a disks gives the list as it is at the call.
    EFICopyFlow(EFICopyManager &manager, PublishedDisks disks, Scheduler &scheduler, QObject *parent = nullptr);

    [[nodiscard]] bool showingDestinationSelection() const { return m_showingDestinationSelection; }
    [[nodiscard]] const std::optional<PhysicalDisk> &selectedSourceDisk() const { return m_selectedSourceDisk; }
    [[nodiscard]] const std::optional<EFIPartition> &selectedSourceEFI() const { return m_selectedSourceEFI; }
    [[nodiscard]] const std::vector<EFICopyManager::EFIPartitionInfo> &availableDestinations() const
    {
        return m_availableDestinations;
    }

    /// A row asks for a copy. Opens the dialog where there is a destination, else a panel for a place; nothing for a
    /// partition that is not mounted.
    void onCopyEFI(const PhysicalDisk &disk, const EFIPartition &efiPartition);

    /// The dialog's choice; nothing while a copy is about to begin. A disk that has gone ends it in silence; what fails
    /// is logged.
    void onDestinationSelected(const EFICopyManager::EFIPartitionInfo &destination, bool overwriteWithoutBackup);

    /// Closes the dialog. An operation that runs goes on; one that asks, or comes to ask, what shall become of the old
    /// folder is cancelled: the next dialog would have its question.
    void onCancel();

Q_SIGNALS:
    void changed();

private:
    void begin(std::function<QCoro::Task<>()> copy);
    void cancelUnseenQuestion();
    QCoro::Task<> copy(PhysicalDisk sourceDisk, EFIPartition sourceEFI, EFICopyManager::EFIPartitionInfo destination,
                       bool overwriteWithoutBackup);
    QCoro::Task<> copyToLocation(PhysicalDisk disk, EFIPartition efiPartition);
    void closeAfterSuccess();

    EFICopyManager &m_manager;
    PublishedDisks m_disks;
    DelayedCalls m_delayedCalls;
    bool m_isAboutToBegin = false;
    bool m_showingDestinationSelection = false;
    std::optional<PhysicalDisk> m_selectedSourceDisk;
    std::optional<EFIPartition> m_selectedSourceEFI;
    std::vector<EFICopyManager::EFIPartitionInfo> m_availableDestinations;
};

} // namespace brindle
