#pragma once

#include "base/UnfinishedWork.h"
#include "platform/DelayedCalls.h"
#include "platform/Dialogs.h"
#include "platform/FileManager.h"
#include "platform/Scheduler.h"
#include "records/PhysicalDisk.h"

#include <QCoroTask>
#include <QObject>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// Copies the folder EFI of a mounted EFI partition to another one, or to a folder of the user's choice.
///
/// It works with the rights of the user, mounts nothing and starts no scan. Each step is told by the published fields;
/// the words of operationStatus() are part of the behaviour, since views and commands read the result from them. The
/// old folder of the destination goes before the new one comes, and nothing is ever rolled back. Start operations one
/// at a time: a second one is not refused. From the first change of a file to the comparison it is unfinished work.
/// Main thread only.
class EFICopyManager : public QObject {
    Q_OBJECT

public:
    /// The destination holds an EFI folder already: what is needed to ask what shall become of it. Copies of the
    /// records as they were when it was found; the first callback that is called goes on with the operation,
    /// any later one does nothing.
    struct ConfirmationData {
        PhysicalDisk sourceDisk;
        EFIPartition sourceEFI;
        PhysicalDisk destinationDisk;
        EFIPartition destinationEFI;
        std::function<void()> onBackup;    ///< Saves the old folder where the user says, then copies.
        std::function<void()> onOverwrite; ///< Copies without a backup.
        std::function<void()> onCancel;
    };

    /// One possible destination.
    struct EFIPartitionInfo {
        std::string diskIdentifier;
        std::string diskName;
        EFIPartition efiPartition;
        bool isBootDisk = false;
        bool hasOpenCore = false;
        bool hasClover = false;
    };

    /// Whether a partition is what is mounted at its mount point.
    using IsMountedThere = std::function<QCoro::Task<bool>(EFIPartition partition)>;

    /// All arguments outlive the manager.
    EFICopyManager(FileManager &fileManager, Dialogs &dialogs, Scheduler &scheduler, UnfinishedWork &unfinishedWork,
                   IsMountedThere isMountedThere);

    /// Where the EFI folder of \a sourceEFI on \a sourceDisk can go: every other mounted EFI partition of \a disks, in
    /// their order. Other partitions of the same disk and the boot disk are among them.
    [[nodiscard]] static std::vector<EFIPartitionInfo> availableDestinations(const std::vector<PhysicalDisk> &disks,
                                                                             const PhysicalDisk &sourceDisk,
                                                                             const EFIPartition &sourceEFI);

    /// Where the EFI folder of a partition with a mount point lies or would lie.
    [[nodiscard]] static std::string efiFolderOf(const EFIPartition &partition);

    /// An operation has started and has not been ended. Stays true while a choice is awaited, and after an operation
    /// that nobody was asked about has failed: cancelOperation() ends that.
    [[nodiscard]] bool isOperationInProgress() const { return m_isOperationInProgress; }
    [[nodiscard]] double operationProgress() const { return m_operationProgress; } ///< 0 to 1; after a backup less.
    [[nodiscard]] const std::string &operationStatus() const { return m_operationStatus; }
    [[nodiscard]] bool isCancelled() const { return m_isCancelled; } ///< Until the next start.
    [[nodiscard]] bool showConfirmationDialog() const { return m_showConfirmationDialog; }
    [[nodiscard]] const std::optional<ConfirmationData> &confirmationData() const { return m_confirmationData; }

    /// Copies from one partition to another; returns when that is done, or when confirmationData() waits for a choice.
    /// Throws EFICopyError, also where another partition is mounted in the place of one of the two by now, and what a
    /// removal throws.
    QCoro::Task<> copyEFI(PhysicalDisk sourceDisk, EFIPartition sourceEFI, PhysicalDisk destinationDisk,
                          EFIPartition destinationEFI, bool overwriteWithoutBackup);

    /// Asks for a place and copies the folder there, under the name that the user gave. Throws EFICopyError.
    QCoro::Task<> copyEFIToLocation(PhysicalDisk disk, EFIPartition efiPartition);

    /// Ends a copy that has not begun to change the destination. One that has goes on to its end, and tells of it.
    void cancelOperation();

    /// Copies the folder \a of to a place that is asked for. Throws EFICopyError.
    QCoro::Task<> createBackup(std::string of, std::string diskName, std::string efiIdentifier);

    /// The absolute path that the user chose; nullopt where none.
    QCoro::Task<std::optional<std::string>> selectBackupLocation(std::string diskName, std::string efiIdentifier,
                                                                 std::string timestamp);
    QCoro::Task<std::optional<std::string>> selectCopyLocation(std::string diskName, std::string efiIdentifier);

    /// Copies a whole folder to a path that must not exist, until it is on the device. \a operationName changes
    /// nothing. Throws EFICopyError::copyFailed().
    QCoro::Task<> copyDirectory(std::string from, std::string to, std::string operationName);

    /// Compares the names in both folders, and nothing else: not what is in them or beneath them. Throws EFICopyError.
    QCoro::Task<> verifyEFICopy(std::string sourcePath, std::string destPath);

Q_SIGNALS:
    void isOperationInProgressChanged();
    void operationProgressChanged();
    void operationStatusChanged();
    void isCancelledChanged();
    void showConfirmationDialogChanged();
    void confirmationDataChanged();

private:
    void begin(std::string status);
    void throwIfCancelled(const std::shared_ptr<bool> &isCancelled);
    QCoro::Task<> requireMounted(std::vector<EFIPartition> partitions);
    QCoro::Task<> requireMountedOrEnd(std::vector<EFIPartition> partitions);
    QCoro::Task<> requireUnchanged(EFIPartition sourceEFI, EFIPartition destinationEFI, std::string destinationVolume);
    QCoro::Task<> checkSource(std::string sourcePath);
    void raiseConfirmation(PhysicalDisk sourceDisk, EFIPartition sourceEFI, PhysicalDisk destinationDisk,
                           EFIPartition destinationEFI, const std::string &destinationVolume);
    QCoro::Task<> performBackupAndCopy(std::string sourcePath, std::string destPath, EFIPartition sourceEFI,
                                       PhysicalDisk destinationDisk, EFIPartition destinationEFI,
                                       std::string destinationVolume);
    QCoro::Task<> performOverwriteAndCopy(std::string sourcePath, std::string destPath, EFIPartition sourceEFI,
                                          EFIPartition destinationEFI, std::string destinationVolume);
    QCoro::Task<> performCancel();
    QCoro::Task<> replaceAndVerify(std::string sourcePath, std::string destPath, EFIPartition sourceEFI,
                                   EFIPartition destinationEFI);
    void leaveConfirmation(double progress, std::string status);
    void endWithFailure(const std::string &reason);
    void clearStatusAfter(Scheduler::Duration delay);

    void publish(std::string status, double progress);
    void setIsOperationInProgress(bool isOperationInProgress);
    void setOperationProgress(double progress);
    void setOperationStatus(std::string status);
    void setIsCancelled(bool isCancelled);
    void setShowConfirmationDialog(bool showConfirmationDialog);
    void setConfirmationData(std::optional<ConfirmationData> confirmationData);

    FileManager &m_fileManager;
    Dialogs &m_dialogs;
    Scheduler &m_scheduler;
    UnfinishedWork &m_unfinishedWork;
    IsMountedThere m_isMountedThere;

    bool m_isOperationInProgress = false;
    double m_operationProgress = 0;
    std::string m_operationStatus;
    bool m_isCancelled = false;
    std::shared_ptr<bool> m_isLastCancelled = std::make_shared<bool>(false); ///< Of the operation that began last.
    bool m_showConfirmationDialog = false;
    std::optional<ConfirmationData> m_confirmationData;
    DelayedCalls m_delayedCalls;
};

} // namespace brindle
