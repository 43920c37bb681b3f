#pragma once

#include <cstdint>

// The functions of the module brindle-tables.so. They give 0, or a negative number of errno's.
extern "C" {

/// A part of a disk, in bytes.
struct BrindleExtent {
    std::uint64_t offsetBytes;
    std::uint64_t sizeBytes;
};

/// Makes a GPT with the \a count partitions \a extents of the types \a types (GUIDs) on the file that \a image is open
/// on, as large as the disk, whose sectors have \a sectorBytes.
int brindleMakeTable(int image, unsigned sectorBytes, const BrindleExtent *extents, const char *const *types,
                     unsigned count);

/// Gives the partition \a number of the table on \a image another type, a GUID or "0xaf" by the kind of the table.
int brindleSetPartitionType(int image, unsigned sectorBytes, unsigned number, const char *type);
}
