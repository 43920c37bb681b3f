#include "kernel/acting/KernelCalls.h"

#include "kernel/Files.h"

#include <cerrno>

#include <fcntl.h>
#include <linux/blkpg.h>
#include <linux/cdrom.h>
#include <linux/fs.h>
#include <linux/loop.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <unistd.h>

namespace brindle::tools {
namespace {

int errorOf(int result)
{
    return result < 0 ? errno : 0;
}

int changePartition(int disk, int operation, const PartitionExtent &extent)
{
    blkpg_partition partition{};
    partition.start = static_cast<long long>(extent.offsetBytes);
    partition.length = static_cast<long long>(extent.sizeBytes);
    partition.pno = extent.number;
    blkpg_ioctl_arg argument{.op = operation, .flags = 0, .datalen = sizeof partition, .data = &partition};
    return errorOf(::ioctl(disk, BLKPG, &argument));
}

} // namespace

std::optional<std::uint64_t> KernelCalls::diskSequence(int descriptor)
{
    std::uint64_t sequence = 0;
    return ::ioctl(descriptor, BLKGETDISKSEQ, &sequence) == 0 ? std::optional(sequence) : std::nullopt;
}

bool KernelCalls::isPrivileged()
{
    return ::geteuid() == 0;
}

int KernelCalls::mount(const MountCall &call)
{
    const unsigned long flags = MS_NOSUID | MS_NODEV | MS_NOEXEC | (call.isReadOnly ? MS_RDONLY : 0UL);
    return errorOf(
        ::mount(call.source.c_str(), call.target.c_str(), call.fileSystem.c_str(), flags, call.options.c_str()));
}

int KernelCalls::unmount(const std::string &mountPoint)
{
    return errorOf(::umount2(mountPoint.c_str(), UMOUNT_NOFOLLOW));
}

int KernelCalls::detach(const std::string &mountPoint)
{
    return errorOf(::umount2(mountPoint.c_str(), UMOUNT_NOFOLLOW | MNT_DETACH));
}

int KernelCalls::addPartition(int disk, const PartitionExtent &extent)
{
    return changePartition(disk, BLKPG_ADD_PARTITION, extent);
}

int KernelCalls::removePartition(int disk, int number)
{
    return changePartition(disk, BLKPG_DEL_PARTITION, {.number = number});
}

int KernelCalls::ejectMedium(int disk)
{
    if (const int error = errorOf(::ioctl(disk, CDROMEJECT, 0)))
        return error;
    // Opened once more the drive is asked whether its medium is out: a stick may only say that it obeyed.
    const Descriptor again("/proc/self/fd/" + std::to_string(disk), O_RDONLY);
    return again.isValid() ? EBUSY : 0;
}

int KernelCalls::detachImage(int disk)
{
    return errorOf(::ioctl(disk, LOOP_CLR_FD, 0));
}

} // namespace brindle::tools
