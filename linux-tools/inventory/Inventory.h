#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace brindle::tools {

/// A file system, or what stands in its place (encryption, volume group, swap).
struct Volume {
    std::string fileSystem; ///< libblkid's name: "vfat", "ntfs", "ext4", "apfs", "crypto_LUKS"; never empty.
    std::string version;    ///< libblkid's version where it tells more: "FAT32", "FAT16"; else empty.
    std::string name;       ///< Its label, raw bytes as they were read; empty for none.
    std::string uuid;       ///< As libblkid prints it; empty for none.
};

/// One entry of a partition table.
struct Partition {
    std::string identifier; ///< "disk2s1"
    std::string node;       ///< "/dev/sda1"; empty where the kernel has no device for it.
    std::string type;       ///< The printed name of its GPT or MBR type: "EFI", "Windows_NTFS", or the bare code.
    std::string uuid;       ///< The table's UUID of the partition, as printed; empty for none.
    std::string container;  ///< "disk3" where an APFS container lies on it, else empty.
    std::uint64_t offsetBytes = 0;
    std::uint64_t sizeBytes = 0;
    std::optional<Volume> volume;
};

enum class Smart { notSupported, verified, failing };

/// A whole disk: a drive, a card or a disk image. Its medium is in.
struct Disk {
    std::string identifier; ///< "disk2"
    std::string node;       ///< "/dev/sda"; empty in a machine file.
    std::string mediaName;  ///< "Samsung SSD 980 PRO (nvme0n1)"
    std::string scheme;     ///< "GUID_partition_scheme", "FDisk_partition_scheme", …; empty without a table.
    std::string protocol;   ///< "SATA", "PCI-Express", "USB", "Disk Image", …
    bool isImage = false;
    bool isExternal = false;
    bool isRemovable = false;
    bool isReadOnly = false;
    bool isSolidState = false;
    bool supportsTrim = false;
    Smart smart = Smart::notSupported;
    std::uint64_t sizeBytes = 0;
    std::uint64_t blockBytes = 512;
    std::optional<Volume> volume;      ///< A file system that lies on the disk without a table.
    std::vector<Partition> partitions; ///< In the order of the disk; without MBR's extended ones.
};

/// A volume of an APFS container, which shares its space with the others.
struct ApfsVolume {
    std::string identifier; ///< "disk3s1"
    std::string name;
    std::string uuid;
    std::uint64_t sizeBytes = 0;
};

/// A synthesized disk: the volumes of one APFS partition. The running kernel has none.
struct ApfsContainer {
    std::string identifier; ///< "disk3"
    std::string store;      ///< The partition that carries it, "disk0s2".
    std::uint64_t sizeBytes = 0;
    std::vector<ApfsVolume> volumes;
};

/// Space and nodes of a mounted file system.
struct Space {
    std::uint64_t totalBytes = 0;
    std::uint64_t usedBytes = 0;
    std::uint64_t availableBytes = 0; ///< For an ordinary user: total less used less what is kept for root.
    std::uint64_t usedNodes = 0;
    std::uint64_t freeNodes = 0;
};

/// A mount of a file system that lies on a listed disk.
struct Mount {
    std::string carrier;          ///< The partition, disk or APFS volume that carries it: "disk2s1".
    std::string mountPoint;       ///< Absolute, raw bytes.
    bool isWhole = true;          ///< All of the file system, not only a folder of it.
    bool isReadOnly = false;      ///< The mount, not the medium.
    std::optional<Volume> volume; ///< Where it isn't the carrier's own: behind LUKS, in a volume group.
    std::optional<Space> space;   ///< Where it was asked for and could be read; at one mount of each file system.
};

/// A variable of the firmware.
struct NvramVariable {
    std::string guid; ///< Upper case.
    std::string name;
    std::string value; ///< Raw bytes, without the attributes before them.
};

/// A name that leads to a device under another one: "/dev/disk/by-label/ESP", "../mnt/".
struct Link {
    std::string path;
    std::string target; ///< The node, mount point or identifier that stands in the inventory.
};

/// What one reading of a machine found.
struct Inventory {
    std::vector<Disk> disks; ///< By their numbers, ascending.
    std::vector<ApfsContainer> containers;
    std::vector<Mount> mounts;      ///< In the order in which they were mounted.
    std::optional<Link> link;       ///< Where the name that was asked for is one.
    std::vector<std::string> notes; ///< What is missing, and why: one raw line each, for standard error.
};

} // namespace brindle::tools
