// The text of `diskutil info`, read as a whole disk's and as a partition's.

#include "Require.h"

#include "base/Text.h"
#include "detectors/DiskDetector.h"
#include "detectors/EFIPartitionReader.h"
#include "detectors/ToolText.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

using namespace brindle;

namespace {

void requireValue(std::string_view value, const char *what)
{
    require(trimmed(value) == value, what);
    require(value.find('\n') == std::string_view::npos, what);
}

void requireGiven(const std::optional<std::string> &value, const char *what)
{
    if (!value)
        return;
    requireValue(*value, what);
    require(ToolText::isGiven(*value), what);
}

void readAsDisk(std::string_view info)
{
    const auto facts = DiskDetector::readDiskInfo(info, "disk0");
    if (!facts)
        return;
    require(info.find("Whole:") != std::string_view::npos, "a whole disk says so");
    require(!facts->name.empty(), "a disk has a name");
    requireValue(facts->name, "name");
    requireValue(facts->size, "size");
    require(facts->size.find('(') == std::string::npos, "a size ends before its bracket");
    requireValue(facts->fileSystem, "file system");
    requireGiven(facts->mountPoint, "mount point");
    requireValue(facts->protocol, "protocol");
    requireValue(facts->mediaUUID.value_or(""), "media UUID");
    const bool isDiskImage = DiskDetector::isExposedDiskImage(info);
    require((DiskDetector::diskType(*facts, isDiskImage) == PhysicalDisk::DiskType::diskImage) == isDiskImage,
            "a disk image is of that type");
}

void readAsPartition(std::string_view info)
{
    const auto partition = EFIPartitionReader::readPartitionInfo(info, "disk0s1");
    if (!partition)
        return;
    require(partition->identifier == "disk0s1", "a partition keeps its identifier");
    require(partition->isMounted == partition->mountPoint.has_value(), "mounted means at a place");
    requireGiven(partition->mountPoint, "mount point");
    requireGiven(partition->volumeName, "volume name");
    requireValue(partition->mediaUUID.value_or(""), "media UUID");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view info(reinterpret_cast<const char *>(data), size);

    readAsDisk(info);
    readAsPartition(info);
    requireGiven(DiskDetector::readVolumeName(info), "given name");
    return 0;
}
