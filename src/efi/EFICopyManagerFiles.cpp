#include "efi/EFICopyManager.h"

#include "efi/EFICopyError.h"

#include "base/Log.h"

#include <QStandardPaths>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <string_view>
#include <utility>

namespace brindle {

namespace {

/// Without the characters that a file's name can't hold on every system.
std::string safeName(std::string name)
{
    constexpr std::string_view kForbidden = ":/\\?%*|\"<>";
    std::ranges::replace_if(
        name, [&](char c) { return kForbidden.find(c) != std::string_view::npos; }, '_');
    return name;
}

std::string desktopFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::DesktopLocation).toStdString();
}

/// In the local time zone.
std::string timestampOf(Scheduler::Date date)
{
    return fmt::format("{:%Y-%m-%d_%H-%M-%S}", fmt::localtime(std::chrono::system_clock::to_time_t(date)));
}

} // namespace

QCoro::Task<> EFICopyManager::createBackup(std::string of, std::string diskName, std::string efiIdentifier)
{
    publish("Creating backup of existing EFI folder...", 0.1);
    auto selection = selectBackupLocation(diskName, efiIdentifier, timestampOf(m_scheduler.date()));
    const std::optional<std::string> location = co_await selection;
    if (!location)
        throw EFICopyError(EFICopyError::Case::userCancelled);
    const UnfinishedWork::Piece piece(m_unfinishedWork);
    auto copy = copyDirectory(of, *location, "backup");
    co_await copy;
    setOperationProgress(0.3);
    Log::line("EFI backup created at: {}", *location);
}

QCoro::Task<std::optional<std::string>> EFICopyManager::selectBackupLocation(std::string diskName,
                                                                             std::string efiIdentifier,
                                                                             std::string timestamp)
{
    return m_dialogs.savePanel(
        {.title = "Save EFI Backup",
         .message = "Choose where to save the backup of the existing EFI folder",
         .proposedName = fmt::format("EFI_{}_{}_{}", safeName(diskName), efiIdentifier, timestamp),
         .startFolder = desktopFolder()});
}

QCoro::Task<std::optional<std::string>> EFICopyManager::selectCopyLocation(std::string diskName,
                                                                           std::string efiIdentifier)
{
    return m_dialogs.savePanel(
        {.title = "Save EFI Folder",
         .message = fmt::format("Choose where to save the EFI folder from {} ({})", diskName, efiIdentifier),
         .proposedName = fmt::format("EFI_{}_{}", safeName(diskName), efiIdentifier),
         .startFolder = desktopFolder()});
}

QCoro::Task<> EFICopyManager::copyDirectory(std::string from, std::string to, std::string /*operationName*/)
{
    publish("Copying files...", 0.7);
    try {
        auto copy = m_fileManager.copyItem(from, to);
        co_await copy;
    } catch (const std::exception &error) {
        setOperationStatus(fmt::format("Copy failed: {}", error.what()));
        throw EFICopyError::copyFailed(error.what());
    }
    publish("Copy completed, verifying...", 0.85);
}

QCoro::Task<> EFICopyManager::verifyEFICopy(std::string sourcePath, std::string destPath)
{
    publish("Verifying copied files...", 0.95);
    std::vector<std::string> sourceNames;
    std::vector<std::string> destNames;
    try {
        auto sourceListing = m_fileManager.contentsOfDirectory(sourcePath);
        sourceNames = co_await sourceListing;
        auto destListing = m_fileManager.contentsOfDirectory(destPath);
        destNames = co_await destListing;
    } catch (const std::exception &) {
        setOperationStatus("Verification failed");
        throw EFICopyError(EFICopyError::Case::verificationFailed);
    }
    std::ranges::sort(sourceNames);
    std::ranges::sort(destNames);
    if (sourceNames != destNames) {
        setOperationStatus("Verification failed - file mismatch");
        throw EFICopyError(EFICopyError::Case::verificationFailed);
    }
    publish("Verification completed successfully", 1);
}

void EFICopyManager::publish(std::string status, double progress)
{
    setOperationStatus(std::move(status));
    setOperationProgress(progress);
}

void EFICopyManager::setIsOperationInProgress(bool isOperationInProgress)
{
    if (std::exchange(m_isOperationInProgress, isOperationInProgress) != isOperationInProgress)
        Q_EMIT isOperationInProgressChanged();
}

void EFICopyManager::setOperationProgress(double progress)
{
    if (std::exchange(m_operationProgress, progress) != progress)
        Q_EMIT operationProgressChanged();
}

void EFICopyManager::setOperationStatus(std::string status)
{
    if (m_operationStatus == status)
        return;
    m_operationStatus = std::move(status);
    Q_EMIT operationStatusChanged();
}

void EFICopyManager::setIsCancelled(bool isCancelled)
{
    if (std::exchange(m_isCancelled, isCancelled) != isCancelled)
        Q_EMIT isCancelledChanged();
}

void EFICopyManager::setShowConfirmationDialog(bool showConfirmationDialog)
{
    if (std::exchange(m_showConfirmationDialog, showConfirmationDialog) != showConfirmationDialog)
        Q_EMIT showConfirmationDialogChanged();
}

void EFICopyManager::setConfirmationData(std::optional<ConfirmationData> confirmationData)
{
    if (!m_confirmationData && !confirmationData)
        return;
    m_confirmationData = std::move(confirmationData);
    Q_EMIT confirmationDataChanged();
}

} // namespace brindle
