#include "linux-tools/SampleMachine.h"

namespace brindle::tools {
namespace {

Volume fat(std::string version, std::string name, std::string uuid)
{
    return {.fileSystem = "vfat", .version = std::move(version), .name = std::move(name), .uuid = std::move(uuid)};
}

Disk internalDrive()
{
    return {
        .identifier = "disk0",
        .node = "/dev/nvme0n1",
        .mediaName = "Samsung SSD 980 PRO (nvme0n1)",
        .scheme = "GUID_partition_scheme",
        .protocol = "NVMe",
        .isSolidState = true,
        .supportsTrim = true,
        .smart = Smart::verified,
        .sizeBytes = 500277790720,
        .partitions = {{.identifier = "disk0s1",
                        .node = "/dev/nvme0n1p1",
                        .type = "EFI",
                        .uuid = "8d1f4a70-7ae9-4b3c-9d2a-00a1b2c3d4e5",
                        .offsetBytes = 1048576,
                        .sizeBytes = 209715200,
                        .volume = fat("FAT32", "EFI", "67E3-17ED")},
                       {.identifier = "disk0s2",
                        .node = "/dev/nvme0n1p2",
                        .type = "Apple_APFS",
                        .uuid = "11111111-2222-3333-4444-555555555555",
                        .container = "disk3",
                        .offsetBytes = 210763776,
                        .sizeBytes = 380000000000,
                        .volume = Volume{.fileSystem = "apfs", .version = {}, .name = {}, .uuid = {}}},
                       {.identifier = "disk0s5",
                        .node = "/dev/nvme0n1p5",
                        .type = "142F5F5D-B9E5-4433-87C0-68B6B72699C7",
                        .offsetBytes = 400000000000,
                        .sizeBytes = 41943040,
                        .volume = Volume{.fileSystem = "ext4", .version = "1.0", .name = "a long name", .uuid = {}}}}};
}

Disk stick()
{
    return {.identifier = "disk10",
            .node = "/dev/sdb",
            .mediaName = "SanDisk Ultra Fit (sdb)",
            .scheme = "FDisk_partition_scheme",
            .protocol = "USB",
            .isExternal = true,
            .isRemovable = true,
            .isReadOnly = true,
            .sizeBytes = 31914983424,
            .partitions = {
                {.identifier = "disk10s1",
                 .node = "/dev/sdb1",
                 .type = "Windows_NTFS",
                 .offsetBytes = 1048576,
                 .sizeBytes = 999960000000,
                 .volume = Volume{.fileSystem = "exfat", .version = {}, .name = "系統保留", .uuid = "1a2b-3c4d"}}}};
}

Disk image()
{
    return {.identifier = "disk4",
            .node = "/dev/loop0",
            .mediaName = "rescue.iso (loop0)",
            .protocol = "Disk Image",
            .isImage = true,
            .sizeBytes = 19800064,
            .volume =
                Volume{.fileSystem = "iso9660", .version = {}, .name = "RESCUE", .uuid = "2024-01-02-03-04-05-00"}};
}

ApfsContainer container()
{
    return {.identifier = "disk3",
            .store = "disk0s2",
            .sizeBytes = 380000000000,
            .volumes = {{.identifier = "disk3s1",
                         .name = "Macintosh HD",
                         .uuid = "fd65e785-a6e2-43d2-a121-7ff5fa007ddc",
                         .sizeBytes = 15200000000},
                        {.identifier = "disk3s6", .name = "VM", .uuid = {}, .sizeBytes = 20480}}};
}

} // namespace

Inventory sampleMachine()
{
    return {.disks = {internalDrive(), image(), stick()},
            .containers = {container()},
            .mounts = {{.carrier = "disk3s1", .mountPoint = "/", .isReadOnly = true},
                       {.carrier = "disk0s1", .mountPoint = "/boot/efi"},
                       {.carrier = "disk0s1", .mountPoint = "/srv/efi"}}};
}

} // namespace brindle::tools
