#include "efi/EraseFlow.h"

#include "base/Log.h"
#include "base/Spawn.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>
#include <string_view>
#include <utility>

namespace brindle {

namespace {

using Stage = EraseOperationManager::Stage;

// Between the labels of a disk's volumes.
constexpr std::string_view kLabelSeparator = " • ";

std::string labelOfFormat(const std::string &diskutilFormat)
{
    const auto &options = eraseFormatOptions();
    const auto option = std::ranges::find(options, diskutilFormat, &FormatOption::diskutilFormat);
    return option == options.end() ? diskutilFormat : option->label;
}

std::string resultOf(const std::string &diskName, const std::string &format, const std::string &name, bool ofVolume)
{
    const std::string label = labelOfFormat(format);
    if (ofVolume)
        return fmt::format(
            "The volume on {} has been erased and reformatted as {}, relabeled \"{}\". The partition map "
            "and EFI partition were left untouched.",
            diskName, label, name);
    return fmt::format("{} has been erased and repartitioned as {}, relabeled \"{}\". A fresh EFI system partition was "
                       "also created — that's expected as part of the disk's GUID partition scheme, not leftover data.",
                       diskName, label, name);
}

} // namespace

EraseFlow::EraseFlow(EraseOperationManager &manager, EraseOperations &operations)
    : m_manager(manager),
      m_operations(operations)
{
}

std::optional<std::string> EraseFlow::partitionTarget(const PhysicalDisk &disk)
{
    if (disk.mountPoint && !disk.mountPoint->empty())
        return disk.mountPoint;
    if (disk.volumeName && !disk.volumeName->empty() && disk.volumeName->find(kLabelSeparator) == std::string::npos)
        return disk.volumeName;
    return std::nullopt;
}

void EraseFlow::openForDisk(PhysicalDisk disk, RowCallbacks row)
{
    const bool hasTarget = partitionTarget(disk).has_value();
    const std::string name = disk.volumeName.value_or(disk.name);
    EraseOperationManager::Request request{
        .dialogTitle = "Erase Disk?",
        .diskName = disk.name,
        .volumeName = disk.volumeName.value_or("No Volume Label"),
        .warningText = fmt::format("This will permanently erase data on {} ({}) and cannot be undone. The disk will be "
                                   "reformatted and relabeled \"{}\".",
                                   disk.name, disk.size, name),
        .confirmName = name,
        .formatOptions = eraseFormatOptions(),
        .allowPartitionScope = hasTarget,
        .eraseScope = hasTarget ? EraseScope::partition : EraseScope::wholeDisk};
    request.onErase = [this, disk, name, row](const std::string &format, EraseScope scope) {
        spawn([this, disk, name, format, scope, row] { return eraseDisk(disk, name, format, scope, row); });
    };
    m_manager.open(std::move(request));
}

void EraseFlow::openForEFIPartition(PhysicalDisk disk, EFIPartition efiPartition, RowCallbacks row)
{
    const bool hasName = efiPartition.volumeName && !efiPartition.volumeName->empty();
    const std::string name = hasName ? *efiPartition.volumeName : "EFI";
    EraseOperationManager::Request request{
        .dialogTitle = "Erase EFI Partition?",
        .diskName = disk.name,
        .volumeName = name,
        .warningText = fmt::format("This will permanently erase the EFI partition ({}) on {}, including any bootloader "
                                   "(OpenCore/Clover) it contains. This cannot be undone.",
                                   efiPartition.identifier, disk.name),
        .confirmName = name,
        .eraseScope = EraseScope::partition};
    request.onErase = [this, diskName = disk.name, identifier = efiPartition.identifier, name,
                       row](const std::string & /*format*/, EraseScope /*scope*/) {
        spawn([this, diskName, identifier, name, row] { return eraseEFIPartition(diskName, identifier, name, row); });
    };
    m_manager.open(std::move(request));
}

QCoro::Task<> EraseFlow::eraseDisk(PhysicalDisk disk, std::string name, std::string format, EraseScope scope,
                                   RowCallbacks row)
{
    const auto target = partitionTarget(disk);
    const bool ofVolume = scope == EraseScope::partition && target;
    row.onOperationStart(fmt::format("Erasing {}...", disk.name));
    try {
        if (ofVolume) {
            auto requiring = m_operations.requireVolumeOn(disk.identifier, *target);
            co_await requiring;
        }
        auto erase = ofVolume ? m_operations.eraseVolume(*target, name, format)
                              : m_operations.eraseDisk(disk.identifier, name, format);
        co_await erase;
        row.onOperationEnd();
        m_manager.finish(Stage::completed, resultOf(disk.name, format, name, scope == EraseScope::partition));
    } catch (const std::exception &error) {
        Log::line("Erase failed: {}", error.what());
        row.onOperationEnd();
        m_manager.finish(Stage::failed, fmt::format("{} could not be erased: {}", disk.name, error.what()));
    }
}

QCoro::Task<> EraseFlow::eraseEFIPartition(std::string diskName, std::string identifier, std::string name,
                                           RowCallbacks row)
{
    row.onOperationStart(fmt::format("Erasing EFI partition of {}...", diskName));
    try {
        auto erase = m_operations.formatEFIPartition(identifier, name);
        co_await erase;
        row.onOperationEnd();
        m_manager.finish(Stage::completed,
                         fmt::format("The EFI partition ({}) on {} has been erased and reformatted as FAT32.",
                                     identifier, diskName));
    } catch (const std::exception &error) {
        Log::line("EFI erase failed: {}", error.what());
        row.onOperationEnd();
        m_manager.finish(Stage::failed,
                         fmt::format("The EFI partition on {} could not be erased: {}", diskName, error.what()));
    }
}

} // namespace brindle
