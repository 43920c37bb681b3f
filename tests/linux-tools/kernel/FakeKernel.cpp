#include "linux-tools/kernel/FakeKernel.h"

#include <fmt/format.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace brindle::tools {
namespace {

namespace fs = std::filesystem;
using namespace std::string_view_literals;

void write(const fs::path &path, std::string_view text)
{
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

fs::path makeTemporaryDirectory()
{
    const fs::path memory = "/dev/shm"; // Where nothing waits for a disk.
    const fs::path place = fs::is_directory(memory) ? memory : fs::temp_directory_path();
    std::string path = (place / "brindle-kernel-XXXXXX").string();
    if (!::mkdtemp(path.data()))
        throw std::runtime_error("no temporary directory");
    return path;
}

void putLittleEndian(std::string &bytes, std::size_t at, std::uint32_t value, std::size_t size)
{
    for (std::size_t index = 0; index < size; ++index)
        bytes[at + index] = static_cast<char>((value >> (8 * index)) & 0xFF);
}

void put(std::string &bytes, std::size_t at, std::string_view text)
{
    bytes.replace(at, text.size(), text);
}

/// The checksum of a GPT, the CRC-32 that UEFI defines.
std::uint32_t crc32(std::string_view bytes)
{
    constexpr std::uint32_t kPolynomial = 0xEDB88320;
    std::uint32_t checksum = ~0U;
    for (const char byte : bytes) {
        checksum ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            checksum = (checksum >> 1) ^ ((checksum & 1) != 0 ? kPolynomial : 0);
    }
    return ~checksum;
}

} // namespace

FakeKernel::FakeKernel() : m_root(makeTemporaryDirectory())
{
    fs::create_directories(m_root / "sys/dev/block");
    fs::create_directories(m_root / "dev");
}

FakeKernel::~FakeKernel()
{
    std::error_code ignored;
    fs::remove_all(m_root, ignored);
}

KernelRoots FakeKernel::roots() const
{
    return {.sys = m_root / "sys",
            .dev = m_root / "dev",
            .udevData = m_root / "run/udev/data",
            .mountInfo = m_root / "mountinfo"};
}

void FakeKernel::addDisk(const std::string &number, const std::string &path, std::uint64_t sectors,
                         const Attributes &attributes)
{
    const fs::path directory = m_root / "sys/devices" / path;
    fs::create_directories(directory);
    fs::create_symlink("../../devices/" + path, m_root / "sys/dev/block" / number);
    write(directory / "size", std::to_string(sectors) + "\n");
    write(directory / "diskseq", number.substr(number.find(':') + 1) + "\n");
    for (const auto &[name, value] : attributes)
        write(directory / name, value + "\n");
}

void FakeKernel::addPartition(const std::string &number, const std::string &path, std::uint64_t start,
                              std::uint64_t sectors)
{
    const fs::path directory = m_root / "sys/devices" / path;
    fs::create_directories(directory);
    fs::create_symlink("../../devices/" + path, m_root / "sys/dev/block" / number);
    write(directory / "start", std::to_string(start) + "\n");
    write(directory / "size", std::to_string(sectors) + "\n");
}

void FakeKernel::addVirtual(const std::string &number, const std::string &name,
                            const std::vector<std::string> &components)
{
    addDisk(number, "virtual/block/" + name, 2048);
    for (const std::string &component : components)
        fs::create_directories(m_root / "sys/devices/virtual/block" / name / "slaves" / component);
}

void FakeKernel::addUdevRecord(const std::string &number, const std::vector<std::string> &properties)
{
    std::string text = "I:12345\n";
    for (const std::string &property : properties)
        text += "E:" + property + "\n";
    write(m_root / "run/udev/data" / ("b" + number), text);
}

void FakeKernel::setAttribute(const std::string &path, const std::string &name, const std::string &value)
{
    write(m_root / "sys/devices" / path / name, value + "\n");
}

void FakeKernel::setMounts(const std::string &mountInfo)
{
    write(m_root / "mountinfo", mountInfo);
}

fs::path FakeKernel::node(const std::string &name) const
{
    return m_root / "dev" / name;
}

void FakeKernel::writeNode(const std::string &name, const std::string &bytes) const
{
    write(node(name), bytes);
}

std::optional<std::string> FakeKernel::linkToSomeBlockDevice(const std::string &name) const
{
    for (const fs::directory_entry &entry : fs::directory_iterator("/dev")) {
        struct stat status {};
        if (::stat(entry.path().c_str(), &status) != 0 || !S_ISBLK(status.st_mode))
            continue;
        fs::create_directories(node(name).parent_path());
        fs::create_symlink(entry.path(), node(name));
        return fmt::format("{}:{}", major(status.st_rdev), minor(status.st_rdev));
    }
    return std::nullopt;
}

std::string mbrWith(const std::vector<MbrEntry> &entries)
{
    constexpr std::size_t kSize = 4 << 20;
    constexpr std::size_t kTable = 446;
    constexpr std::size_t kEntry = 16;
    std::string bytes(kSize, '\0');
    putLittleEndian(bytes, 440, 0x1234ABCD, 4);
    for (std::size_t index = 0; index < entries.size(); ++index) {
        const std::size_t at = kTable + index * kEntry;
        bytes[at + 4] = static_cast<char>(entries[index].type);
        putLittleEndian(bytes, at + 8, entries[index].start, 4);
        putLittleEndian(bytes, at + 12, entries[index].sectors, 4);
    }
    put(bytes, 510, "\x55\xAA");
    return bytes;
}

std::string gptWithEfi(std::uint32_t first, std::uint32_t last)
{
    constexpr std::size_t kHeader = 512;
    constexpr std::size_t kHeaderSize = 92;
    constexpr std::size_t kEntries = 2 * 512;
    constexpr std::size_t kEntryCount = 128;
    constexpr std::size_t kEntrySize = 128;
    std::string bytes = mbrWith({{0xEE, 1, 8191}});
    put(bytes, kEntries, "\x28\x73\x2A\xC1\x1F\xF8\xD2\x11\xBA\x4B\x00\xA0\xC9\x3E\xC9\x3B"sv);
    put(bytes, kEntries + 16, "the entry's UUID");
    putLittleEndian(bytes, kEntries + 32, first, 4);
    putLittleEndian(bytes, kEntries + 40, last, 4);
    put(bytes, kHeader, "EFI PART\x00\x00\x01\x00"sv); // with the version
    putLittleEndian(bytes, kHeader + 12, kHeaderSize, 4);
    putLittleEndian(bytes, kHeader + 24, 1, 4);    // where the header lies
    putLittleEndian(bytes, kHeader + 32, 8191, 4); // where its copy lies
    putLittleEndian(bytes, kHeader + 40, 34, 4);   // the first sector for partitions
    putLittleEndian(bytes, kHeader + 48, 8158, 4); // the last one
    putLittleEndian(bytes, kHeader + 72, 2, 4);    // where the entries lie
    putLittleEndian(bytes, kHeader + 80, kEntryCount, 4);
    putLittleEndian(bytes, kHeader + 84, kEntrySize, 4);
    putLittleEndian(bytes, kHeader + 88, crc32(bytes.substr(kEntries, kEntryCount * kEntrySize)), 4);
    putLittleEndian(bytes, kHeader + 16, crc32(bytes.substr(kHeader, kHeaderSize)), 4);
    return bytes;
}

std::string fatWith(std::string_view label, std::uint32_t sectors)
{
    std::string bytes(std::size_t{sectors} * 512, '\0');
    put(bytes, 0, std::string_view("\xEB\x3C\x90mkfs.fat", 11));
    putLittleEndian(bytes, 11, 512, 2); // bytes in a sector
    bytes[13] = 4;                      // sectors in a cluster
    putLittleEndian(bytes, 14, 4, 2);   // reserved sectors
    bytes[16] = 2;                      // tables
    putLittleEndian(bytes, 17, 512, 2); // entries of the root folder
    putLittleEndian(bytes, 19, sectors, 2);
    bytes[21] = static_cast<char>(0xF8);
    putLittleEndian(bytes, 22, 20, 2); // sectors in a table
    bytes[38] = 0x29;
    putLittleEndian(bytes, 39, 0xABCD1234, 4);
    std::string name(label);
    name.resize(11, ' ');
    put(bytes, 43, name);
    put(bytes, 54, "FAT16   ");
    constexpr std::size_t kRootFolder = (4 + 2 * 20) * 512;
    put(bytes, kRootFolder, name);
    bytes[kRootFolder + 11] = 0x08; // The entry is the label.
    put(bytes, 510, "\x55\xAA");
    return bytes;
}

} // namespace brindle::tools
