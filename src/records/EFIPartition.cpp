#include "records/EFIPartition.h"
#include "records/Hasher.h"

#include <fmt/format.h>

namespace brindle {

EFIPartition EFIPartition::fromSerialized(const SerializableEFIPartition &serialized)
{
    return {.identifier = serialized.identifier,
            .mediaUUID = serialized.mediaUUID,
            .isMounted = serialized.isMounted,
            .mountPoint = serialized.mountPoint,
            .volumeName = serialized.volumeName};
}

SerializableEFIPartition EFIPartition::toSerializable() const
{
    return {.identifier = identifier,
            .mediaUUID = mediaUUID,
            .isMounted = isMounted,
            .mountPoint = mountPoint,
            .volumeName = volumeName};
}

std::string EFIPartition::displayName() const
{
    if (!volumeName || volumeName->empty())
        return identifier;
    return fmt::format("{} ({})", identifier, *volumeName);
}

bool EFIPartition::operator==(const EFIPartition &other) const
{
    return identifier == other.identifier && isMounted == other.isMounted;
}

} // namespace brindle

std::size_t std::hash<brindle::EFIPartition>::operator()(const brindle::EFIPartition &partition) const noexcept
{
    return brindle::Hasher().feed(partition.identifier).feed(partition.isMounted).value();
}
