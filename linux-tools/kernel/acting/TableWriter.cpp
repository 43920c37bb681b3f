#include "kernel/acting/TableWriter.h"

#include "acting/Actor.h"
#include "kernel/Files.h"
#include "kernel/Module.h"
#include "kernel/PartitionTypes.h"
#include "kernel/TablesModule.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>

#include <sys/mman.h>
#include <unistd.h>

namespace brindle::tools {
namespace {

constexpr std::uint64_t kMiB = 1024 * 1024;
constexpr std::uint64_t kPage = 4096;      // What the kernel takes over of a write at once; a sector at most.
constexpr unsigned kPrimaryPartitions = 4; // Of an MBR; what is numbered behind them lies in an extended one.
constexpr const char *kModule = "brindle-tables.so";

/// A file in memory, which takes up what was written to it alone.
class Picture {
public:
    explicit Picture(std::uint64_t sizeBytes) : m_descriptor(::memfd_create("disk", MFD_CLOEXEC))
    {
        if (m_descriptor < 0 || ::ftruncate(m_descriptor, static_cast<off_t>(sizeBytes)) != 0)
            throw ActionError(fmt::format("No memory for a new table: {}", std::strerror(errno)));
    }
    Picture(const Picture &) = delete;
    Picture &operator=(const Picture &) = delete;
    ~Picture() { ::close(m_descriptor); }

    [[nodiscard]] int descriptor() const { return m_descriptor; }

private:
    int m_descriptor;
};

std::string readAt(int descriptor, std::uint64_t offset, std::uint64_t size)
{
    std::string bytes(size, '\0');
    std::uint64_t done = 0;
    while (done < size) {
        const ssize_t count = ::pread(descriptor, bytes.data() + done, size - done, static_cast<off_t>(offset + done));
        if (count <= 0)
            throw ActionError(fmt::format("The table can't be read: {}", std::strerror(count < 0 ? errno : EIO)));
        done += static_cast<std::uint64_t>(count);
    }
    return bytes;
}

void writeAt(int descriptor, const Piece &piece)
{
    if (::pwrite(descriptor, piece.bytes.data(), piece.bytes.size(), static_cast<off_t>(piece.offsetBytes)) !=
        static_cast<ssize_t>(piece.bytes.size()))
        throw ActionError(fmt::format("The table can't be written: {}", std::strerror(errno)));
}

void synchronize(int descriptor)
{
    if (::fsync(descriptor) != 0)
        throw ActionError(fmt::format("The table can't be written: {}", std::strerror(errno)));
}

template <typename Function>
Function *tablesFunction(const char *name)
{
    void *const function = moduleFunction(kModule, name);
    if (!function)
        throw ActionError(fmt::format("The module {}, or the library libfdisk that it needs, is missing", kModule));
    return reinterpret_cast<Function *>(function);
}

void check(int error)
{
    if (error != 0)
        throw ActionError(fmt::format("The table can't be made: {}", std::strerror(-error)));
}

} // namespace

TableWriter::TableWriter(int disk, std::uint64_t sizeBytes, unsigned sectorBytes)
    : m_disk(disk),
      m_sizeBytes(sizeBytes),
      m_sectorBytes(sectorBytes)
{
}

void TableWriter::makeTable(const std::vector<NewPartition> &partitions)
{
    std::vector<BrindleExtent> extents;
    std::vector<const char *> types;
    for (const NewPartition &partition : partitions) {
        extents.push_back({partition.extent.offsetBytes, partition.extent.sizeBytes});
        types.push_back(partition.type.c_str());
    }
    const Picture picture(m_sizeBytes);
    auto *const make = tablesFunction<decltype(brindleMakeTable)>("brindleMakeTable");
    check(make(picture.descriptor(), m_sectorBytes, extents.data(), types.data(), static_cast<unsigned>(types.size())));
    write(picture.descriptor());
}

void TableWriter::setType(unsigned number, const std::string &type)
{
    auto *const set = tablesFunction<decltype(brindleSetPartitionType)>("brindleSetPartitionType");
    if (number > kPrimaryPartitions && type.starts_with("0x")) {
        // Each logical partition has a table of its own before it: one sector, which the disk writes whole or not.
        check(set(m_disk, m_sectorBytes, number, type.c_str()));
        synchronize(m_disk);
        return;
    }
    const Picture picture(m_sizeBytes);
    for (const std::uint64_t offset : {std::uint64_t{0}, m_sizeBytes - kMiB})
        writeAt(picture.descriptor(), {offset, readAt(m_disk, offset, kMiB)});
    check(set(picture.descriptor(), m_sectorBytes, number, type.c_str()));
    write(picture.descriptor());
}

void TableWriter::write(int image)
{
    const std::string beginning = readAt(image, 0, kMiB);
    const std::string end = readAt(image, m_sizeBytes - kMiB, kMiB);
    for (const Piece &piece : inSafeOrder(beginning, end, m_sizeBytes)) {
        if (readAt(m_disk, piece.offsetBytes, piece.bytes.size()) == piece.bytes)
            continue;
        writeAt(m_disk, piece);
        synchronize(m_disk);
    }
}

std::vector<Piece> TableWriter::inSafeOrder(const std::string &beginning, const std::string &end,
                                            std::uint64_t sizeBytes)
{
    std::vector<Piece> pieces{{sizeBytes - end.size(), end}};
    for (std::size_t offset = beginning.size(); offset > 0; offset -= kPage)
        pieces.push_back({offset - kPage, beginning.substr(offset - kPage, kPage)});
    return pieces;
}

std::vector<NewPartition> erasedLayout(std::uint64_t sizeBytes, const std::string &volumeType)
{
    constexpr std::uint64_t kEfiBytes = 200 * kMiB;
    const std::uint64_t start = kMiB + kEfiBytes;
    const std::uint64_t end = sizeBytes / kMiB * kMiB - kMiB; // the second copy of the table lies behind it
    return {{{1, kMiB, kEfiBytes}, gptTypeCode("EFI")}, {{2, start, end - start}, volumeType}};
}

} // namespace brindle::tools
