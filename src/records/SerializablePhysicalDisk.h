#pragma once

#include "records/SerializableEFIPartition.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// A PhysicalDisk in the form in which it survives a relaunch. The names of the fields are the keys of the JSON object,
/// and their order is the order in which it is written.
struct SerializablePhysicalDisk {
    std::string identifier;
    std::optional<std::string> mediaUUID;
    std::string name;
    std::string size;
    std::string fileSystem;
    std::optional<std::string> mountPoint;
    std::optional<std::string> volumeName;
    bool isRemovable = false;
    bool isWritable = false;
    std::vector<SerializableEFIPartition> efiPartitions;
    std::string diskType; ///< The name of the case of PhysicalDisk::DiskType.
    bool isBootDisk = false;
    bool hasMacOS = false;
    bool hasOpenCore = false;
    bool hasClover = false;
    bool hasWindows = false;
    bool hasLinux = false;
    bool hasExFAT = false;
    bool isDiskImage = false;
    std::optional<std::int64_t> totalSpaceBytes;
    std::optional<std::int64_t> usedSpaceBytes;
    // Older data lack the last four.
    std::optional<std::string> smartStatus; ///< A raw value of SMARTStatus.
    std::optional<bool> isSolidState;
    std::optional<bool> trimSupported;
    std::optional<std::string> busProtocol;

    bool operator==(const SerializablePhysicalDisk &) const = default;
};

enum class JSONLayout { Compact, Indented };

/// The disks as a JSON array of objects in UTF-8. An absent optional is left out; bytes that are no UTF-8 become
/// U+FFFD.
[[nodiscard]] std::string encodeDisks(const std::vector<SerializablePhysicalDisk> &disks,
                                      JSONLayout layout = JSONLayout::Compact);

/// What decodeDisks() complains of: the code of its Error, in the domain "DiskDecoding".
enum class DiskDecodingError { notJSON = 1, missingKey, wrongType };

/// Reads what encodeDisks() wrote, in any order of keys; an unknown key is passed over, and a null counts as absent.
///
/// Throws an Error that names the disk, counted from 0, and the key, where a required key is missing or any has a value
/// of the wrong type: nothing is read in part.
[[nodiscard]] std::vector<SerializablePhysicalDisk> decodeDisks(std::string_view json);

} // namespace brindle
