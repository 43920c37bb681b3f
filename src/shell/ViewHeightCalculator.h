#pragma once

#include "platform/UserDefaults.h"
#include "records/PhysicalDisk.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace brindle {

/// The height that the list of disks needs, with header and footer: the only place that knows how high a row is.
///
/// Who shows the list cuts the height to bounds of its own.
class ViewHeightCalculator {
public:
    // All in points.
    static constexpr double kEmptyHeight = 202; ///< Without disks: the view that says so.
    static constexpr double kBlankHeight = 82;  ///< Disks are told of, and not there yet.
    static constexpr double kRowHeight = 68;
    static constexpr double kRowHeightWithBar = 95; ///< Of a row that shows the disk's space.
    static constexpr double kPartitionRowHeight = 40;
    static constexpr double kPartitionRowHeightWithLabel = 41;
    static constexpr double kGap = 4; ///< Between rows, and before and after the partitions of a disk.
    static constexpr double kFrameHeight = 78;
    static constexpr double kBottomGap = 4;

    explicit ViewHeightCalculator(const UserDefaults &defaults); ///< Outlives the calculator.

    /// The height in points. \a expandedDisks are the identifiers of the disks whose rows are open, of disks that have
    /// gone, too.
    [[nodiscard]] double contentHeight(std::size_t diskCount, const std::set<std::string> &expandedDisks,
                                       const std::vector<PhysicalDisk> &disks) const;

    /// Of a disk's own row.
    [[nodiscard]] double rowHeight(const PhysicalDisk &disk) const;
    [[nodiscard]] static double rowHeight(const EFIPartition &partition);

    /// What the opened list of partitions adds to a disk's row. A single partition is shown by the row itself.
    [[nodiscard]] static double expansionHeight(const PhysicalDisk &disk);

private:
    const UserDefaults &m_defaults;
};

} // namespace brindle
