#pragma once

#include "detectors/Diskutil.h"

#include "base/CancellationToken.h"
#include "records/EFIPartition.h"

#include <QCoroTask>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// Finds the EFI partitions of a whole disk and reads their state: the side of EFIOperations that needs no rights.
///
/// A failing tool and an unknown identifier give no record, never an error. Main thread only.
class EFIPartitionReader {
public:
    EFIPartitionReader(ToolRunner &tools, ToolPaths paths); ///< The tool runner outlives the reader.

    /// The partitions of \a disk that its section of `diskutil list` shows as EFI partitions, each once, in line order.
    [[nodiscard]] static std::vector<std::string> efiCandidates(std::string_view disk, std::string_view section);

    /// What \a info, the text of `diskutil info`, tells of the partition \a identifier.
    [[nodiscard]] static std::optional<EFIPartition> readPartitionInfo(std::string_view info,
                                                                       std::string_view identifier);

    [[nodiscard]] QCoro::Task<std::optional<EFIPartition>> partitionInfo(std::string identifier,
                                                                         CancellationToken token = {});

    /// Whether the partition is still mounted at its mount point. Labels make mount points and pass from disk to disk:
    /// another one may be mounted there by now. False also where the tool can't tell.
    [[nodiscard]] QCoro::Task<bool> isMountedThere(EFIPartition partition);

    /// The records of all candidates, read one after the other, in their order.
    [[nodiscard]] QCoro::Task<std::vector<EFIPartition>> efiPartitions(std::string disk, std::string section,
                                                                       CancellationToken token = {});

protected:
    [[nodiscard]] const Diskutil &diskutil() const { return m_diskutil; }

private:
    Diskutil m_diskutil;
};

} // namespace brindle
