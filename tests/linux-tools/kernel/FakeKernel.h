#pragma once

#include "kernel/BlockDevices.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brindle::tools {

/// A tree of files that stands for /sys, /dev, udev's database and the mount table of a kernel.
class FakeKernel {
public:
    FakeKernel();
    FakeKernel(const FakeKernel &) = delete;
    FakeKernel &operator=(const FakeKernel &) = delete;
    ~FakeKernel();

    using Attributes = std::vector<std::pair<std::string, std::string>>;

    /// A disk at "/devices/PATH" of \a sectors of 512 bytes. Its diskseq is its minor number, unless given.
    void addDisk(const std::string &number, const std::string &path, std::uint64_t sectors,
                 const Attributes &attributes = {});

    /// A partition below a disk's path: "PATH/sda1".
    void addPartition(const std::string &number, const std::string &path, std::uint64_t start, std::uint64_t sectors);

    /// A device-mapper or md device that is made out of others.
    void addVirtual(const std::string &number, const std::string &name, const std::vector<std::string> &components);

    /// What udev knows of a device: lines "KEY=VALUE".
    void addUdevRecord(const std::string &number, const std::vector<std::string> &properties);

    void setAttribute(const std::string &path, const std::string &name, const std::string &value);
    void setMounts(const std::string &mountInfo);

    /// The file that stands for the node of a device; what is written to it can be read by libblkid.
    [[nodiscard]] std::filesystem::path node(const std::string &name) const;
    void writeNode(const std::string &name, const std::string &bytes) const;

    /// Links \a name, below the directory of nodes, to any block device of this machine; its number, or `nullopt`
    /// where there is none.
    [[nodiscard]] std::optional<std::string> linkToSomeBlockDevice(const std::string &name) const;

    [[nodiscard]] std::filesystem::path root() const { return m_root; }
    [[nodiscard]] KernelRoots roots() const;

private:
    std::filesystem::path m_root;
};

/// The first sectors of a disk with an MBR; each entry is its type, its first sector and its number of sectors.
struct MbrEntry {
    unsigned char type = 0;
    std::uint32_t start = 0;
    std::uint32_t sectors = 0;
};
[[nodiscard]] std::string mbrWith(const std::vector<MbrEntry> &entries);

/// The first sectors of a disk with a GPT whose only entry, an EFI partition, begins and ends at these sectors.
[[nodiscard]] std::string gptWithEfi(std::uint32_t first, std::uint32_t last);

/// The boot sector of a FAT file system of \a sectors, with as much behind it as libblkid wants to see.
[[nodiscard]] std::string fatWith(std::string_view label, std::uint32_t sectors);

} // namespace brindle::tools
