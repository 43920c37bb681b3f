#pragma once

#include "records/PhysicalDisk.h"

#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// What can be done to the row of a disk or of one of its EFI partitions.
enum class RowAction {
    toggleMount,
    open,
    copyEFI,
    quickEdit,
    renameEFI,
    eraseEFI,
    toggleExpanded,
    toggleAutoMount,
    viewDetails,
    renameVolume,
    eject,
    eraseDisk,
    refresh,
};

/// Which of the row's functions have a screen. What has none is not offered.
struct RowOffers {
    bool copy = true;
    bool erase = true;
};

/// A line of a row's context menu.
struct RowMenuEntry {
    enum class Kind { action, divider, status };

    Kind kind = Kind::action;
    std::string label;            ///< Of a status, plain text to be read; empty for a divider. Names stand as they are.
    std::string_view symbol = {}; ///< Of an action.
    RowAction action = {};        ///< Likewise.

    bool operator==(const RowMenuEntry &) const = default;
};

/// A button at the end of a row.
struct RowButton {
    std::string_view name; ///< What tests and screens call it.
    std::string_view symbol;
    std::string_view tip;
    RowAction action{};

    bool operator==(const RowButton &) const = default;
};

// The context menus, from top to bottom.
[[nodiscard]] std::vector<RowMenuEntry> diskMenu(const PhysicalDisk &disk, bool isExpanded, bool isAutoMount,
                                                 RowOffers offers);
[[nodiscard]] std::vector<RowMenuEntry> partitionMenu(const PhysicalDisk &disk, const EFIPartition &partition,
                                                      RowOffers offers);

// The buttons of the rows, from left to right. Those of a disk act on its first EFI partition, but for copying, which
// takes the first mounted one.
[[nodiscard]] std::vector<RowButton> diskButtons(const PhysicalDisk &disk, RowOffers offers);
[[nodiscard]] std::vector<RowButton> partitionButtons(const EFIPartition &partition, RowOffers offers);

/// What a disk's row says under the pointer. The same for several partitions, although a double click acts on one.
[[nodiscard]] std::string_view diskToolTip(const PhysicalDisk &disk);

} // namespace brindle
