// The persisted list of disks: what is read is written and read again without a difference.

#include "Require.h"

#include "base/Error.h"
#include "records/PhysicalDisk.h"
#include "records/SerializablePhysicalDisk.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

using namespace brindle;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::vector<SerializablePhysicalDisk> disks;
    try {
        disks = decodeDisks({reinterpret_cast<const char *>(data), size});
    } catch (const Error &error) {
        require(error.domain() == "DiskDecoding", "the error's domain");
        require(!error.localizedDescription().empty(), "the error's description");
        return 0;
    }
    require(decodeDisks(encodeDisks(disks)) == disks, "decode(encode(x)) == x");
    require(decodeDisks(encodeDisks(disks, JSONLayout::Indented)) == disks, "the same when indented");
    for (const SerializablePhysicalDisk &serialized : disks) {
        const PhysicalDisk disk = PhysicalDisk::fromSerialized(serialized);
        const PhysicalDisk again = PhysicalDisk::fromSerialized(disk.toSerializable());
        require(disk == again, "a record there and back is equal");
        require(disk.toSerializable() == again.toSerializable(), "and loses no field");
        require(std::hash<PhysicalDisk>{}(disk) == std::hash<PhysicalDisk>{}(again), "equal records hash alike");
    }
    return 0;
}
