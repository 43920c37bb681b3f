#pragma once

#include "platform/Dialogs.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"
#include "privileged/EFIOperations.h"
#include "records/PhysicalDisk.h"
#include "state/DiskManager.h"

#include <QCoroTask>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace brindle {

/// What happens when somebody acts on the row of a disk or of one of its EFI partitions: what is called in which order.
///
/// An action works on the records as they were when it was asked for. It tells of its start, acts, and tells of its end
/// in any case. What fails is logged and only then its Error thrown, by an action that begins with a question not even
/// that. Main thread only.
class RowActions {
public:
    enum class Row { disk, efiPartition };

    /// What acts; all of it outlives the row.
    struct Model {
        DiskManager &diskManager;
        EFIOperations &efiOperations;
        Dialogs &dialogs;
        Workspace &workspace;
        const UserDefaults &userDefaults;
    };

    /// How the row's container is told.
    struct Callbacks {
        std::function<void(const std::string &status)> onOperationStart = [](const std::string &) {};
        std::function<void()> onOperationEnd = [] {};
        std::function<void()> onEFIOpened = [] {};     ///< A partition was shown in the file manager.
        std::function<void()> onDialogOpening = [] {}; ///< The container must not close when it loses the keyboard.
        std::function<void()> onDialogClosed = [] {};
    };

    RowActions(Row row, const Model &model, Callbacks callbacks); ///< The row outlives the actions that it has begun.

    /// An action of this row is under way.
    [[nodiscard]] bool isLoading() const { return m_operationsUnderWay > 0; }

    /// Whether the disk can be let go: not a built-in one, and not the one that the system runs from.
    [[nodiscard]] static bool canEject(const PhysicalDisk &disk);

    /// Whether the EFI partitions of the disk may be erased: not those that the system was started from.
    [[nodiscard]] static bool canEraseEFI(const PhysicalDisk &disk) { return !disk.isBootDisk; }

    /// Unmounts the partition where it is mounted, else mounts it. Nothing while an action of this row is under way,
    /// which holds for mount(), unmount() and eject() too.
    QCoro::Task<> toggle(PhysicalDisk disk, EFIPartition partition);

    QCoro::Task<> mount(PhysicalDisk disk, EFIPartition partition);
    QCoro::Task<> unmount(PhysicalDisk disk, EFIPartition partition);

    /// Shows the folder that the partition is mounted at.
    QCoro::Task<> open(EFIPartition partition);

    /// Opens the config.plist of the mounted partition: OpenCore's, or else Clover's.
    QCoro::Task<> quickEdit(EFIPartition partition);

    /// Asks for a new name and gives it to the partition.
    QCoro::Task<> askToRenameEFI(PhysicalDisk disk, EFIPartition partition);
    QCoro::Task<> renameEFI(PhysicalDisk disk, EFIPartition partition, std::string newName);

    /// Asks for a new name and gives it to the volume that EraseFlow::partitionTarget() tells. Nothing where there is
    /// none.
    QCoro::Task<> askToRenameVolume(PhysicalDisk disk);
    QCoro::Task<> renameVolume(PhysicalDisk disk, std::string newName);

    /// DiskManager::ejectDisk(): what the tool says.
    QCoro::Task<std::string> eject(PhysicalDisk disk);

private:
    class Operation;
    class Dialog;

    QCoro::Task<> updateState(std::string identifier);
    [[nodiscard]] std::string statusOf(std::string_view verb, const PhysicalDisk &disk,
                                       const EFIPartition &partition) const;
    QCoro::Task<std::optional<std::string>> newName(std::string title, std::string text, std::string currentName);

    Row m_row;
    Model m_model;
    Callbacks m_callbacks;
    int m_operationsUnderWay = 0; ///< A rename may begin while another action runs.
};

} // namespace brindle
