// The readers of what the kernel and udev print: the mount table, udev's records, device numbers and identifiers.

#include "Require.h"

#include "inventory/Identifier.h"
#include "kernel/BlockDevices.h"
#include "kernel/MountTable.h"
#include "kernel/PartitionTypes.h"
#include "kernel/UdevRecord.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

using namespace brindle;
using namespace brindle::tools;

namespace {

void readMountTable(std::string_view text)
{
    for (const MountEntry &entry : parseMountTable(text)) {
        require(!entry.mountPoint.empty() && !entry.fileSystem.empty(), "an entry has a place and a type");
        for (const std::string &layer : overlayLayers(entry))
            require(layer.starts_with('/'), "a layer is an absolute path");
    }
}

void readIdentifier(std::string_view text)
{
    const auto identifier = parseIdentifier(text);
    if (!identifier)
        return;
    const std::string disk = diskIdentifier(identifier->disk);
    const std::string written = identifier->partition ? partitionIdentifier(disk, *identifier->partition) : disk;
    const auto again = parseIdentifier(written);
    require(again && again->disk == identifier->disk && again->partition == identifier->partition,
            "what is written is read as the same identifier");
}

void readRecord(std::string_view text)
{
    const UdevRecord record = parseUdevRecord(text);
    require(!record.volume || !record.volume->fileSystem.empty(), "a volume has a type");
    require(decodeUdevText(text).size() <= text.size(), "decoding makes nothing longer");
    const std::string name = partitionTypeName(record.entryTable, record.entryType);
    require(name.empty() == record.entryType.empty(), "a type has a name");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) // NOLINT
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    readMountTable(text);
    readIdentifier(text);
    readRecord(text);
    (void)parseDeviceNumber(text);
    return 0;
}
