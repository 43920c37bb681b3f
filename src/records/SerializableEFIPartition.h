#pragma once

#include <optional>
#include <string>

namespace brindle {

/// An EFIPartition in the form in which it survives a relaunch. The names of the fields are the keys of the JSON
/// object.
struct SerializableEFIPartition {
    std::string identifier;
    std::optional<std::string> mediaUUID;
    bool isMounted = false;
    std::optional<std::string> mountPoint;
    std::optional<std::string> volumeName;

    bool operator==(const SerializableEFIPartition &) const = default;
};

} // namespace brindle
