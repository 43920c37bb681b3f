#include "efi/RowActions.h"

#include "efi/EraseFlow.h"

#include "base/DefaultsKeys.h"
#include "base/FileExists.h"
#include "base/Log.h"
#include "base/Text.h"
#include "records/FindDisk.h"
#include "records/Preferences.h"

#include <fmt/format.h>

#include <string_view>
#include <utility>

namespace brindle {

namespace {

std::string givenOr(const std::optional<std::string> &name, const std::string &otherwise)
{
    return name && !name->empty() ? *name : otherwise;
}

/// The end of \a task; what fails is logged behind \a words, and thrown on.
template <typename T>
QCoro::Task<T> logged(const char *words, QCoro::Task<T> task)
{
    try {
        co_return co_await task;
    } catch (const Error &error) {
        Log::line("{}{}", words, error.what());
        throw;
    }
}

} // namespace

/// An action from its start to its end, whichever way it ends.
class RowActions::Operation {
public:
    Operation(RowActions &row, const std::string &status) : m_row(row)
    {
        ++m_row.m_operationsUnderWay;
        m_row.m_callbacks.onOperationStart(status);
    }
    Operation(const Operation &) = delete;
    Operation &operator=(const Operation &) = delete;
    ~Operation()
    {
        --m_row.m_operationsUnderWay;
        m_row.m_callbacks.onOperationEnd();
    }

private:
    RowActions &m_row;
};

/// The time in which a dialog may stand, and what it has led to runs.
class RowActions::Dialog {
public:
    explicit Dialog(const RowActions &row) : m_row(row) { m_row.m_callbacks.onDialogOpening(); }
    Dialog(const Dialog &) = delete;
    Dialog &operator=(const Dialog &) = delete;
    ~Dialog() { m_row.m_callbacks.onDialogClosed(); }

private:
    const RowActions &m_row;
};

RowActions::RowActions(Row row, const Model &model, Callbacks callbacks)
    : m_row(row),
      m_model(model),
      m_callbacks(std::move(callbacks))
{
}

bool RowActions::canEject(const PhysicalDisk &disk)
{
    return disk.diskType != PhysicalDisk::DiskType::physicalInternal && !disk.isBootDisk;
}

QCoro::Task<> RowActions::toggle(PhysicalDisk disk, EFIPartition partition)
{
    const bool isMounted = partition.isMounted;
    return isMounted ? unmount(std::move(disk), std::move(partition)) : mount(std::move(disk), std::move(partition));
}

QCoro::Task<> RowActions::mount(PhysicalDisk disk, EFIPartition partition)
{
    if (isLoading())
        co_return;
    const Operation operation(*this, statusOf("Mounting", disk, partition));
    auto mounting = logged("Mount failed: ", m_model.diskManager.mountEFI(partition.identifier, disk.name));
    co_await mounting;
    if (!isOn(m_model.userDefaults, DefaultsKeys::kAutoOpenFinderOnMount))
        co_return;
    const EFIPartition *const fresh = findEFIPartition(m_model.diskManager.disks(), partition.identifier);
    if (!fresh)
        co_return;
    auto opening = open(*fresh);
    co_await opening;
}

QCoro::Task<> RowActions::unmount(PhysicalDisk disk, EFIPartition partition)
{
    if (isLoading())
        co_return;
    const Operation operation(*this, statusOf("Unmounting", disk, partition));
    auto unmounting = logged("Unmount failed: ", m_model.efiOperations.unmount(partition.identifier, disk.name));
    co_await unmounting;
    auto updating = updateState(partition.identifier);
    co_await updating;
}

QCoro::Task<> RowActions::open(EFIPartition partition)
{
    if (partition.mountPoint) {
        auto looking = fileExists(*partition.mountPoint);
        if (co_await looking)
            m_model.workspace.openFile(*partition.mountPoint);
    }
    m_callbacks.onEFIOpened();
}

QCoro::Task<> RowActions::quickEdit(EFIPartition partition)
{
    if (!partition.mountPoint)
        co_return;
    auto looking = configPlistAt(*partition.mountPoint);
    if (const std::optional<std::string> path = co_await looking)
        m_model.workspace.openFile(*path);
}

QCoro::Task<> RowActions::askToRenameEFI(PhysicalDisk disk, EFIPartition partition)
{
    const Dialog dialog(*this);
    auto asking =
        newName("Rename EFI Partition", fmt::format("Enter a new name for the EFI partition on {}.", disk.name),
                givenOr(partition.volumeName, partition.identifier));
    const std::optional<std::string> name = co_await asking;
    if (!name)
        co_return;
    auto renaming = renameEFI(disk, partition, *name);
    try {
        co_await renaming;
    } catch (const Error &) { // the row stays as it was
    }
}

QCoro::Task<> RowActions::renameEFI(PhysicalDisk disk, EFIPartition partition, std::string newName)
{
    const Operation operation(*this, fmt::format("Renaming EFI partition of {}", disk.name));
    auto renaming =
        logged("EFI rename failed: ", m_model.efiOperations.rename(partition.identifier, std::move(newName)));
    co_await renaming;
    auto updating = updateState(partition.identifier);
    co_await updating;
}

QCoro::Task<> RowActions::askToRenameVolume(PhysicalDisk disk)
{
    const std::optional<std::string> target = EraseFlow::partitionTarget(disk);
    if (!target)
        co_return;
    const Dialog dialog(*this);
    auto asking =
        newName("Rename Volume", fmt::format("Enter a new name for \"{}\".", givenOr(disk.volumeName, *target)),
                disk.volumeName.value_or(""));
    const std::optional<std::string> name = co_await asking;
    if (!name)
        co_return;
    auto renaming = renameVolume(disk, *name);
    try {
        co_await renaming;
    } catch (const Error &) { // the row stays as it was
    }
}

QCoro::Task<> RowActions::renameVolume(PhysicalDisk disk, std::string newName)
{
    const std::optional<std::string> target = EraseFlow::partitionTarget(disk);
    if (!target)
        co_return;
    const Operation operation(*this, fmt::format("Renaming {}", givenOr(disk.volumeName, *target)));
    auto requiring = logged("Rename failed: ", m_model.diskManager.requireVolumeOn(disk.identifier, *target));
    co_await requiring;
    auto renaming = logged("Rename failed: ", m_model.efiOperations.rename(*target, std::move(newName)));
    co_await renaming;
    auto scan = m_model.diskManager.startScan(false);
    co_await scan;
}

QCoro::Task<std::string> RowActions::eject(PhysicalDisk disk)
{
    if (isLoading())
        co_return {};
    const Operation operation(*this, fmt::format("Ejecting {}", disk.name));
    auto ejecting = logged("Eject failed: ", m_model.diskManager.ejectDisk(disk.identifier));
    co_return co_await ejecting;
}

QCoro::Task<> RowActions::updateState(std::string identifier)
{
    auto updating = m_model.diskManager.updateEFIPartitionState(std::move(identifier));
    co_await updating;
    m_model.diskManager.persistState();
}

std::string RowActions::statusOf(std::string_view verb, const PhysicalDisk &disk, const EFIPartition &partition) const
{
    return m_row == Row::disk ? fmt::format("{} EFI partition of {}", verb, disk.name)
                              : fmt::format("{} {}", verb, partition.identifier);
}

QCoro::Task<std::optional<std::string>> RowActions::newName(std::string title, std::string text,
                                                            std::string currentName)
{
    TextPrompt prompt{.alert = {.messageText = std::move(title),
                                .informativeText = std::move(text),
                                .style = AlertStyle::informational,
                                .buttons = {"Rename", "Cancel"}},
                      .placeholder = "New name",
                      .text = std::move(currentName)};
    auto asking = m_model.dialogs.textPrompt(std::move(prompt));
    const std::optional<std::string> answer = co_await asking;
    const std::string_view name = answer ? trimmedWithNewlines(*answer) : std::string_view();
    co_return name.empty() ? std::nullopt : std::optional<std::string>(name);
}

} // namespace brindle
