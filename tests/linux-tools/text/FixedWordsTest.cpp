#include "text/DiskutilText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace brindle::tools {
namespace {

using namespace std::string_view_literals;

// The words by which readers of the tools' text tell what a disk holds, or that something is missing. They look for
// them anywhere in it, without regard to case, so that no label and no answer of ours may hold one.
constexpr std::array kTellingWords{
    "apfs"sv,
    "apple_hfs"sv,
    "hfs+"sv,
    "hfs plus"sv,
    "mac os extended"sv,
    "apple partition map"sv,
    "apple_partition"sv,
    "fat32"sv,
    "fat16"sv,
    "msdos"sv,
    "dos_fat"sv,
    "windows"sv,
    "ntfs"sv,
    "microsoft"sv,
    "winre_dlp"sv,
    "recovery"sv,
    "ext2"sv,
    "ext3"sv,
    "ext4"sv,
    "xfs"sv,
    "btrfs"sv,
    "b-tree"sv,
    "zfs"sv,
    "zpool"sv,
    "jfs"sv,
    "jffs2"sv,
    "journaled"sv,
    "reiser"sv,
    "bcachefs"sv,
    "f2fs"sv,
    "flash-friendly"sv,
    "nilfs2"sv,
    "log-structured"sv,
    "ceph"sv,
    "glusterfs"sv,
    "lustre"sv,
    "ocfs2"sv,
    "linux"sv,
    "cramfs"sv,
    "squashfs"sv,
    "ubifs"sv,
    "luks"sv,
    "dm-crypt"sv,
    "ecryptfs"sv,
    "exfat"sv,
    "ex-fat"sv,
    "extended file"sv,
    "ufs"sv,
    "unix"sv,
    "berkeley"sv,
    "minix"sv,
    "tuxera"sv,
    "paragon"sv,
    "not applicable"sv,
    "could not be found"sv,
    "total size:"sv,
    "gpt"sv,
    "apple_partition_scheme"sv,
    "(synthesized)"sv,
    "container"sv,
};

constexpr std::array kProtocols{
    "SATA"sv,   "PCI-Express"sv, "USB"sv,  "FireWire"sv, "iSCSI"sv,          "SAS"sv,
    "Virtio"sv, "Xen"sv,         "SCSI"sv, "eMMC"sv,     "Secure Digital"sv, "Disk Image"sv};

std::string lowerCased(std::string text)
{
    std::ranges::transform(text, text.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return text;
}

std::vector<std::string_view> tellingWordsIn(const std::string &text)
{
    std::vector<std::string_view> found;
    const std::string lower = lowerCased(text);
    std::ranges::copy_if(kTellingWords, std::back_inserter(found),
                         [&](std::string_view word) { return lower.find(word) != std::string::npos; });
    return found;
}

/// A disk with a table and partitions of which nothing is known, all qualities answered \a yes.
Inventory blankDisk(std::string_view protocol, bool yes)
{
    Disk disk{.identifier = "disk2",
              .node = "/dev/sdb",
              .mediaName = "Drive (sdb)",
              .scheme = "GUID_partition_scheme",
              .protocol = std::string(protocol),
              .isExternal = yes,
              .isRemovable = yes,
              .isReadOnly = yes,
              .isSolidState = yes,
              .supportsTrim = yes,
              .smart = yes ? Smart::verified : Smart::failing,
              .sizeBytes = 1000,
              .partitions = {{.identifier = "disk2s1", .node = "/dev/sdb1", .type = "EFI", .sizeBytes = 512},
                             {.identifier = "disk2s2", .node = "/dev/sdb2", .type = "BIOS Boot", .sizeBytes = 512},
                             {.identifier = "disk2s3", .node = "/dev/sdb3", .type = "", .sizeBytes = 512}}};
    Inventory inventory{.disks = {std::move(disk)}};
    if (yes)
        inventory.mounts = {{.carrier = "disk2s1", .mountPoint = "/mnt"}};
    return inventory;
}

TEST(FixedWords, TellNothingOfWhatADiskHolds)
{
    for (const std::string_view protocol : kProtocols) {
        for (const bool yes : {false, true}) {
            const Inventory inventory = blankDisk(protocol, yes);

            std::string text = listText(inventory) + listPhysicalText(inventory);
            for (const char *name : {"disk2", "disk2s1", "disk2s2", "disk2s3"})
                text += infoText(*findDevice(inventory, name));

            EXPECT_EQ(tellingWordsIn(text), std::vector<std::string_view>()) << text;
        }
    }
}

TEST(FixedWords, TellAnImageByItsHeaderAlone)
{
    Inventory inventory = blankDisk("Disk Image", false);
    inventory.disks[0].isImage = true;

    EXPECT_NE(lowerCased(listText(inventory)).find("(disk image)"), std::string::npos);
    EXPECT_EQ(lowerCased(infoText(*findDevice(inventory, "disk2"))).find("(disk image)"), std::string::npos);
}

TEST(FixedWords, MarkOnlyEfiPartitionsInAList)
{
    Inventory inventory = blankDisk("SATA", false);
    inventory.disks[0].partitions.erase(inventory.disks[0].partitions.begin());

    const std::string text = lowerCased(listText(inventory));

    EXPECT_EQ(text.find("efi"), std::string::npos);
    EXPECT_EQ(text.find("esp"), std::string::npos);
}

} // namespace
} // namespace brindle::tools
