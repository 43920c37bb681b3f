#pragma once

#include "records/SerializableEFIPartition.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace brindle {

/// One EFI system partition, as it was at the last reading.
struct EFIPartition {
    std::string identifier; ///< Device name such as "disk0s1": its identity.
    std::optional<std::string> mediaUUID;
    bool isMounted = false;
    std::optional<std::string> mountPoint; ///< Present while mounted.
    std::optional<std::string> volumeName;

    [[nodiscard]] static EFIPartition fromSerialized(const SerializableEFIPartition &serialized);
    [[nodiscard]] SerializableEFIPartition toSerializable() const;

    /// "disk0s1 (NAME)", or the identifier alone where there is no name.
    [[nodiscard]] std::string displayName() const;

    /// Compares identifier and isMounted alone: whoever watches partitions is to see them come, go, mount and unmount,
    /// and not a new name or place of the same one.
    bool operator==(const EFIPartition &other) const;
};

} // namespace brindle

template <>
struct std::hash<brindle::EFIPartition> {
    std::size_t operator()(const brindle::EFIPartition &partition) const noexcept;
};
