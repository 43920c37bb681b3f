#include "efi/EFICopyManager.h"

#include "efi/EFICopyError.h"

#include "base/Spawn.h"

#include <fmt/format.h>

#include <exception>
#include <memory>
#include <utility>

namespace brindle {

namespace {

using namespace std::chrono_literals;

constexpr auto kStatusAfterSuccess = 3s;
constexpr auto kStatusAfterCancelling = 2s;
constexpr auto kStatusAfterFailure = 5s;

} // namespace

EFICopyManager::EFICopyManager(FileManager &fileManager, Dialogs &dialogs, Scheduler &scheduler,
                               UnfinishedWork &unfinishedWork, IsMountedThere isMountedThere)
    : m_fileManager(fileManager),
      m_dialogs(dialogs),
      m_scheduler(scheduler),
      m_unfinishedWork(unfinishedWork),
      m_isMountedThere(std::move(isMountedThere)),
      m_delayedCalls(scheduler)
{
}

std::vector<EFICopyManager::EFIPartitionInfo> EFICopyManager::availableDestinations(
    const std::vector<PhysicalDisk> &disks, const PhysicalDisk &sourceDisk, const EFIPartition &sourceEFI)
{
    std::vector<EFIPartitionInfo> destinations;
    for (const PhysicalDisk &disk : disks) {
        for (const EFIPartition &partition : disk.efiPartitions) {
            const bool isSource =
                disk.identifier == sourceDisk.identifier && partition.identifier == sourceEFI.identifier;
            if (partition.isMounted && !isSource)
                destinations.push_back({.diskIdentifier = disk.identifier,
                                        .diskName = disk.name,
                                        .efiPartition = partition,
                                        .isBootDisk = disk.isBootDisk,
                                        .hasOpenCore = disk.hasOpenCore,
                                        .hasClover = disk.hasClover});
        }
    }
    return destinations;
}

std::string EFICopyManager::efiFolderOf(const EFIPartition &partition)
{
    return partition.mountPoint.value() + "/EFI";
}

QCoro::Task<> EFICopyManager::copyEFI(PhysicalDisk sourceDisk, EFIPartition sourceEFI, PhysicalDisk destinationDisk,
                                      EFIPartition destinationEFI, bool overwriteWithoutBackup)
{
    if (!sourceEFI.mountPoint || !destinationEFI.mountPoint)
        throw EFICopyError(EFICopyError::Case::efiNotMounted);
    if (sourceDisk.identifier == destinationDisk.identifier && sourceEFI.identifier == destinationEFI.identifier)
        throw EFICopyError(EFICopyError::Case::sameSourceAndDestination);

    begin("Preparing EFI copy operation...");
    const std::string sourcePath = efiFolderOf(sourceEFI);
    const std::string destPath = efiFolderOf(destinationEFI);
    const auto isCancelled = m_isLastCancelled; // another operation may begin meanwhile
    throwIfCancelled(isCancelled);
    auto telling = m_fileManager.volumeAt(*destinationEFI.mountPoint);
    const std::string volume = co_await telling;
    auto requiring = requireMountedOrEnd({sourceEFI, destinationEFI});
    co_await requiring;
    auto check = checkSource(sourcePath);
    co_await check;
    publish("Checking destination...", 0.1);
    auto looking = m_fileManager.fileExists(destPath);
    const bool isThere = co_await looking;
    if (isThere && !*isCancelled) {
        if (!overwriteWithoutBackup) {
            raiseConfirmation(sourceDisk, sourceEFI, destinationDisk, destinationEFI, volume);
            co_return;
        }
        publish("Preparing to overwrite existing EFI folder...", 0.3);
    } else {
        publish("Destination is ready...", 0.2);
    }
    throwIfCancelled(isCancelled); // the last look: what begins now changes the destination
    auto replacement = replaceAndVerify(sourcePath, destPath, sourceEFI, destinationEFI);
    co_await replacement;
}

QCoro::Task<> EFICopyManager::copyEFIToLocation(PhysicalDisk disk, EFIPartition efiPartition)
{
    if (!efiPartition.mountPoint)
        throw EFICopyError(EFICopyError::Case::efiNotMounted);

    begin("Preparing to copy EFI folder...");
    const std::string sourcePath = efiFolderOf(efiPartition);
    auto requiring = requireMountedOrEnd({efiPartition});
    co_await requiring;
    auto check = checkSource(sourcePath);
    co_await check;
    auto selection = selectCopyLocation(disk.name, efiPartition.identifier);
    const std::optional<std::string> location = co_await selection;
    if (!location) {
        setIsOperationInProgress(false);
        setOperationStatus("Operation cancelled");
        throw EFICopyError(EFICopyError::Case::userCancelled);
    }
    auto requiringStill = requireMountedOrEnd({efiPartition});
    co_await requiringStill;
    const UnfinishedWork::Piece piece(m_unfinishedWork);
    publish(fmt::format("Copying EFI folder from {}...", efiPartition.displayName()), 0.3);
    auto copy = copyDirectory(sourcePath, *location, "EFI folder");
    co_await copy;
    setOperationProgress(0.9);
    auto verification = verifyEFICopy(sourcePath, *location);
    co_await verification;
    setIsOperationInProgress(false);
    setOperationProgress(1);
    setOperationStatus("EFI folder copied successfully");
    clearStatusAfter(kStatusAfterSuccess);
}

void EFICopyManager::cancelOperation()
{
    *m_isLastCancelled = true;
    setIsCancelled(true);
    setIsOperationInProgress(false);
    publish("Operation cancelled", 0);
    setShowConfirmationDialog(false);
    setConfirmationData(std::nullopt);
    clearStatusAfter(kStatusAfterCancelling);
}

void EFICopyManager::begin(std::string status)
{
    setIsOperationInProgress(true);
    setOperationProgress(0);
    setOperationStatus(std::move(status));
    m_isLastCancelled = std::make_shared<bool>(false);
    setIsCancelled(false);
    setShowConfirmationDialog(false);
}

void EFICopyManager::throwIfCancelled(const std::shared_ptr<bool> &isCancelled)
{
    if (!*isCancelled)
        return;
    if (isCancelled == m_isLastCancelled) {
        setIsOperationInProgress(false);
        setOperationStatus("Operation cancelled");
    }
    throw EFICopyError(EFICopyError::Case::userCancelled);
}

/// Throws where one of \a partitions is not where the list of disks has it: that may be older than what was mounted
/// there since.
QCoro::Task<> EFICopyManager::requireMounted(std::vector<EFIPartition> partitions)
{
    for (const EFIPartition &partition : partitions) {
        auto asking = m_isMountedThere(partition);
        if (!co_await asking)
            throw EFICopyError::copyFailed(
                fmt::format("{} is not mounted at {} any more", partition.displayName(), *partition.mountPoint));
    }
}

QCoro::Task<> EFICopyManager::requireMountedOrEnd(std::vector<EFIPartition> partitions)
{
    auto requiring = requireMounted(std::move(partitions));
    try {
        co_await requiring;
    } catch (const std::exception &error) {
        endWithFailure(error.what());
        throw;
    }
}

QCoro::Task<> EFICopyManager::checkSource(std::string sourcePath)
{
    const auto end = [this](std::string status, EFICopyError::Case which) {
        setIsOperationInProgress(false);
        setOperationStatus(std::move(status));
        return EFICopyError(which);
    };
    auto looking = m_fileManager.fileExists(sourcePath);
    const bool isThere = co_await looking;
    if (!isThere)
        throw end("Source EFI folder not found", EFICopyError::Case::sourceEFINotFound);
    std::vector<std::string> names;
    try {
        auto listing = m_fileManager.contentsOfDirectory(sourcePath);
        names = co_await listing;
    } catch (const std::exception &) {
        throw end("Cannot read source EFI folder", EFICopyError::Case::sourceEFINotFound);
    }
    if (names.empty())
        throw end("Source EFI folder is empty - nothing to copy", EFICopyError::Case::sourceEFIEmpty);
}

void EFICopyManager::raiseConfirmation(PhysicalDisk sourceDisk, EFIPartition sourceEFI, PhysicalDisk destinationDisk,
                                       EFIPartition destinationEFI, const std::string &destinationVolume)
{
    const std::string source = efiFolderOf(sourceEFI);
    const std::string destination = efiFolderOf(destinationEFI);
    ConfirmationData data{.sourceDisk = std::move(sourceDisk),
                          .sourceEFI = sourceEFI,
                          .destinationDisk = destinationDisk,
                          .destinationEFI = destinationEFI};
    const auto once = [isAnswered = std::make_shared<bool>(false)](std::function<QCoro::Task<>()> goOn) {
        return [=] {
            if (!std::exchange(*isAnswered, true))
                spawn(goOn);
        };
    };
    data.onBackup = once([=, this] {
        return performBackupAndCopy(source, destination, sourceEFI, destinationDisk, destinationEFI, destinationVolume);
    });
    data.onOverwrite = once([=, this] {
        return performOverwriteAndCopy(source, destination, sourceEFI, destinationEFI, destinationVolume);
    });
    data.onCancel = once([this] { return performCancel(); });
    setConfirmationData(std::move(data));
    setShowConfirmationDialog(true);
}

QCoro::Task<> EFICopyManager::performBackupAndCopy(std::string sourcePath, std::string destPath, EFIPartition sourceEFI,
                                                   PhysicalDisk destinationDisk, EFIPartition destinationEFI,
                                                   std::string destinationVolume)
{
    leaveConfirmation(0, "Creating backup of existing EFI folder...");
    try {
        auto backup = createBackup(destPath, destinationDisk.name, destinationEFI.identifier);
        co_await backup;
        auto requiring = requireUnchanged(sourceEFI, destinationEFI, destinationVolume);
        co_await requiring;
        auto replacement = replaceAndVerify(sourcePath, destPath, sourceEFI, destinationEFI);
        co_await replacement;
    } catch (const std::exception &error) {
        endWithFailure(error.what());
    }
}

QCoro::Task<> EFICopyManager::performOverwriteAndCopy(std::string sourcePath, std::string destPath,
                                                      EFIPartition sourceEFI, EFIPartition destinationEFI,
                                                      std::string destinationVolume)
{
    leaveConfirmation(0.3, "Preparing to copy EFI folder...");
    try {
        auto requiring = requireUnchanged(sourceEFI, destinationEFI, destinationVolume);
        co_await requiring;
        auto replacement = replaceAndVerify(sourcePath, destPath, sourceEFI, destinationEFI);
        co_await replacement;
    } catch (const std::exception &error) {
        endWithFailure(error.what());
    }
}

QCoro::Task<> EFICopyManager::performCancel()
{
    cancelOperation();
    co_return;
}

/// Throws where what the user was asked about is no longer there: nearly all sticks are mounted under the same name.
QCoro::Task<> EFICopyManager::requireUnchanged(EFIPartition sourceEFI, EFIPartition destinationEFI,
                                               std::string destinationVolume)
{
    auto telling = m_fileManager.volumeAt(*destinationEFI.mountPoint);
    if (co_await telling != destinationVolume)
        throw EFICopyError::copyFailed(fmt::format("What is mounted at {} is not what it was when it was asked about",
                                                   *destinationEFI.mountPoint));
    auto requiring = requireMounted({sourceEFI, destinationEFI});
    co_await requiring;
}

/// What every copy to a partition ends with.
QCoro::Task<> EFICopyManager::replaceAndVerify(std::string sourcePath, std::string destPath, EFIPartition sourceEFI,
                                               EFIPartition destinationEFI)
{
    const UnfinishedWork::Piece piece(m_unfinishedWork);
    publish(fmt::format("Copying EFI from {} to {}...", sourceEFI.displayName(), destinationEFI.displayName()), 0.4);
    auto looking = m_fileManager.fileExists(destPath);
    if (co_await looking) {
        publish("Removing existing EFI folder...", 0.5);
        auto removal = m_fileManager.removeItem(destPath);
        co_await removal;
    }
    publish("Copying files...", 0.6);
    auto copy = copyDirectory(sourcePath, destPath, "EFI folder");
    co_await copy;
    publish("Verifying copied files...", 0.9);
    auto verification = verifyEFICopy(sourcePath, destPath);
    co_await verification;
    publish("EFI copy completed successfully", 1);
    setIsOperationInProgress(false);
    clearStatusAfter(kStatusAfterSuccess);
}

void EFICopyManager::leaveConfirmation(double progress, std::string status)
{
    setShowConfirmationDialog(false);
    setConfirmationData(std::nullopt);
    setIsOperationInProgress(true);
    setOperationProgress(progress);
    setOperationStatus(std::move(status));
}

void EFICopyManager::endWithFailure(const std::string &reason)
{
    setIsOperationInProgress(false);
    setOperationStatus(fmt::format("Operation failed: {}", reason));
    clearStatusAfter(kStatusAfterFailure);
}

void EFICopyManager::clearStatusAfter(Scheduler::Duration delay)
{
    m_delayedCalls.after(delay, [this] { setOperationStatus({}); });
}

} // namespace brindle
