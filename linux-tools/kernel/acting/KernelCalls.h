#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace brindle::tools {

/// A file system to mount: never with set-user-ID programs, devices or programs at all.
struct MountCall {
    std::string source;
    std::string target;
    std::string fileSystem; ///< The kernel's name.
    std::string options;    ///< Of the file system, parted by commas.
    bool isReadOnly = false;
};

/// A partition as the kernel shall know it.
struct PartitionExtent {
    int number = 0;
    std::uint64_t offsetBytes = 0;
    std::uint64_t sizeBytes = 0;
};

/// What acting asks of the kernel that files of a folder can't stand for: tests answer in its place. Whatever gives
/// an int gives 0, or errno's number.
class KernelCalls {
public:
    KernelCalls() = default;
    KernelCalls(const KernelCalls &) = delete;
    KernelCalls &operator=(const KernelCalls &) = delete;
    virtual ~KernelCalls() = default;

    /// The number that the kernel counts the disk by that \a descriptor is open on, or that its partition lies on;
    /// `nullopt` before Linux 5.15.
    [[nodiscard]] virtual std::optional<std::uint64_t> diskSequence(int descriptor);

    /// Whether this program may mount and unmount.
    [[nodiscard]] virtual bool isPrivileged();

    [[nodiscard]] virtual int mount(const MountCall &call);
    [[nodiscard]] virtual int unmount(const std::string &mountPoint);

    /// Takes a mount out of the tree of folders; it ends when no program holds it any longer.
    [[nodiscard]] virtual int detach(const std::string &mountPoint);

    [[nodiscard]] virtual int addPartition(int disk, const PartitionExtent &extent);
    [[nodiscard]] virtual int removePartition(int disk, int number);

    /// Has a SCSI device give its medium out; EBUSY where it is still in then.
    [[nodiscard]] virtual int ejectMedium(int disk);

    /// Takes the file off a loop device.
    [[nodiscard]] virtual int detachImage(int disk);
};

} // namespace brindle::tools
