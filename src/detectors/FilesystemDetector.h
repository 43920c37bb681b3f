#pragma once

#include "detectors/Diskutil.h"
#include "detectors/FilesystemFlags.h"

#include "base/CancellationToken.h"

#include <QCoroTask>

#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// Tells which systems a whole disk holds, by the words that `diskutil` uses for its partitions.
///
/// A section is the part of `diskutil list` that belongs to one disk; it may be empty. A failing tool loses what one
/// partition would have told, never more. The static functions read texts and run nothing; each of them logs what it
/// looks at and finds. Main thread only.
class FilesystemDetector {
public:
    FilesystemDetector(ToolRunner &tools, ToolPaths paths); ///< The tool runner outlives the detector.

    /// All that \a mainInfo, the text of `diskutil info` of the whole disk \a identifier, its section and the texts of
    /// its partitions tell together. Runs the tool once for each partition but those of the EFI kind.
    [[nodiscard]] QCoro::Task<FilesystemFlags> detectFilesystems(std::string identifier, std::string mainInfo,
                                                                 std::string section, CancellationToken token = {});

    /// What the content and the personality of the whole disk tell.
    [[nodiscard]] static FilesystemFlags analyzeMainDiskInfo(std::string_view info, std::string_view identifier);

    /// What the partition types and names in a section tell.
    [[nodiscard]] static FilesystemFlags analyzeDiskList(std::string_view section, std::string_view identifier);

    /// What \a info, the text of `diskutil info` of the partition \a identifier, tells. Unlike the two above, it counts
    /// NTFS as Windows whichever driver reads it.
    [[nodiscard]] static FilesystemFlags analyzePartitionInfo(std::string_view info, std::string_view identifier);

    /// The first partition of \a disk that each line names, each once and sorted as plain text: "disk0s10" stands
    /// before "disk0s2".
    [[nodiscard]] static std::vector<std::string> partitionIdentifiers(std::string_view section, std::string_view disk);

    /// Whether the first line that holds \a partition is of an EFI partition. The line of "disk0s10" holds "disk0s1".
    [[nodiscard]] static bool isEFIPartitionLine(std::string_view partition, std::string_view section);

private:
    Diskutil m_diskutil;
};

} // namespace brindle
