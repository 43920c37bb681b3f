#pragma once

#include "efi/EraseOperationManager.h"

#include "records/PhysicalDisk.h"
#include "state/EraseOperations.h"

#include <QCoroTask>

#include <functional>
#include <optional>
#include <string>

namespace brindle {

/// Opens the erase dialog for a disk or an EFI partition, and carries out what is confirmed there. Main thread only.
class EraseFlow {
public:
    /// How the row that asked tells that it is busy.
    struct RowCallbacks {
        std::function<void(const std::string &status)> onOperationStart = [](const std::string &) {};
        std::function<void()> onOperationEnd = [] {};
    };

    EraseFlow(EraseOperationManager &manager, EraseOperations &operations); ///< Both outlive the flow.

    /// Which volume of the disk can be erased alone: its mount point, or else its label. Absent where there is neither,
    /// or where the label stands for several volumes.
    [[nodiscard]] static std::optional<std::string> partitionTarget(const PhysicalDisk &disk);

    void openForDisk(PhysicalDisk disk, RowCallbacks row);
    void openForEFIPartition(PhysicalDisk disk, EFIPartition efiPartition, RowCallbacks row);

private:
    QCoro::Task<> eraseDisk(PhysicalDisk disk, std::string name, std::string format, EraseScope scope,
                            RowCallbacks row);
    QCoro::Task<> eraseEFIPartition(std::string diskName, std::string identifier, std::string name, RowCallbacks row);

    EraseOperationManager &m_manager;
    EraseOperations &m_operations;
};

} // namespace brindle
