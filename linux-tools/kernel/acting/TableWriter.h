#pragma once

#include "kernel/acting/KernelCalls.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace brindle::tools {

/// A partition of a table to be made.
struct NewPartition {
    PartitionExtent extent;
    std::string type; ///< Its GUID.
};

/// A place of a disk that is written at once.
struct Piece {
    std::uint64_t offsetBytes = 0;
    std::string bytes;
};

/// Writes partition tables so that a program that is killed in between leaves the old table or the new one.
///
/// libfdisk works on a picture of the disk in memory. Of that the copy at the disk's end is written first, then the
/// beginning, from its end to its first page: the old table is valid until the first sectors, in one write, make the
/// new one so; where the old one's entries have to go before, the copy at the end is the new one already.
class TableWriter {
public:
    /// \param disk a descriptor of the whole disk, for writing
    TableWriter(int disk, std::uint64_t sizeBytes, unsigned sectorBytes);

    /// Makes a GPT; what else lay before its first partition and behind the last is gone. \throws ActionError
    void makeTable(const std::vector<NewPartition> &partitions);

    /// Gives a partition another type, a GUID or "0xaf" by the kind of the table. \throws ActionError
    void setType(unsigned number, const std::string &type);

    /// The pieces of the new table in the order in which they are written.
    [[nodiscard]] static std::vector<Piece> inSafeOrder(const std::string &beginning, const std::string &end,
                                                        std::uint64_t sizeBytes);

private:
    void write(int image);

    int m_disk;
    std::uint64_t m_sizeBytes;
    unsigned m_sectorBytes;
};

/// Where the partitions of an erased disk lie: an EFI partition of 200 MB behind the table, and one in all the rest.
[[nodiscard]] std::vector<NewPartition> erasedLayout(std::uint64_t sizeBytes, const std::string &volumeType);

} // namespace brindle::tools
