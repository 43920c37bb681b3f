#pragma once

#include "inventory/Inventory.h"

#include <optional>
#include <string>
#include <string_view>

namespace brindle::tools {

/// What udev found out about a block device when it came. What is unknown is empty.
struct UdevRecord {
    std::string tableType;  ///< Of a disk: "gpt", "dos".
    std::string entryTable; ///< Of a partition: the type of the table that its entry is in.
    std::string entryType;  ///< A GUID, "0x83" or a name, by the table.
    std::string entryUuid;
    std::optional<Volume> volume;
    std::string bus;   ///< "ata", "usb"
    std::string model; ///< As the device says it, with blanks at its end.
    bool hasOpticalMedium = false;
};

/// A line "E:KEY=VALUE" of a file of udev's database.
struct UdevProperty {
    std::string_view key;
    std::string_view value; ///< As it stands there.
};

/// Takes the next property off the \a text of such a file, with the lines before it; `nullopt` when there is none.
[[nodiscard]] std::optional<UdevProperty> takeUdevProperty(std::string_view &text);

/// Reads all of such a text.
[[nodiscard]] UdevRecord parseUdevRecord(std::string_view text);

/// \a text with each "\xNN" replaced by the byte that it stands for, as udev writes what a device says.
[[nodiscard]] std::string decodeUdevText(std::string_view text);

} // namespace brindle::tools
