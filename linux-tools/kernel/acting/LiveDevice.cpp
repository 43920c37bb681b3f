#include "kernel/acting/LiveDevice.h"

#include "acting/ActionWords.h"
#include "inventory/Identifier.h"
#include "kernel/DiskReader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>

namespace brindle::tools {
namespace {

// Without O_NONBLOCK an open would close the tray of an optical drive, or fail without a medium.
constexpr int kAlways = O_NONBLOCK | O_NOCTTY;

ActionError openError(const std::string &identifier)
{
    const int error = errno;
    if (error == EBUSY)
        return eraseRefusal(fmt::format("{} is in use", identifier));
    if (error == EACCES || error == EPERM)
        return ActionError(std::string(kCantOpen));
    return ActionError(fmt::format("{}: {}\n{}", identifier, std::strerror(error), kCantOpen));
}

} // namespace

LiveDevice::LiveDevice(const KernelRoots &roots, const Target &target)
    : m_devices(roots),
      m_mounts(m_devices, fileBytes(roots.mountInfo)),
      m_argument(target.argument)
{
    const auto identifier = parseIdentifier(target.identifier());
    if (!identifier)
        throw diskNotFound(m_argument);
    m_number = identifier->disk;
    for (const BlockDevice &device : m_devices.all()) {
        if (isShown(device) && diskNumber(m_devices, device) == m_number)
            m_disk = &device;
    }
    if (!m_disk)
        throw diskNotFound(m_argument);
    m_device = identifier->partition ? nullptr : m_disk;
    for (const BlockDevice *part : m_devices.partitionsOf(*m_disk)) {
        if (part->partitionNumber() == identifier->partition)
            m_device = part;
    }
    if (!m_device)
        throw ActionError(
            fmt::format("Unable to find disk for {}: the kernel has not read the table that it stands in", m_argument));
}

std::string LiveDevice::identifierOf(const BlockDevice &device) const
{
    const std::string disk = diskIdentifier(m_number);
    return device.parent.empty() ? disk : partitionIdentifier(disk, device.partitionNumber());
}

std::vector<const BlockDevice *> LiveDevice::parts() const
{
    std::vector<const BlockDevice *> parts{m_device};
    if (m_device == m_disk)
        std::ranges::copy(m_devices.partitionsOf(*m_disk), std::back_inserter(parts));
    return parts;
}

std::vector<CarriedMount> LiveDevice::mounts() const
{
    return m_mounts.carriedBy(parts());
}

Descriptor LiveDevice::open(const BlockDevice &device, int flags, KernelCalls &calls) const
{
    Descriptor descriptor(m_devices.file(device), flags | kAlways);
    if (!descriptor.isValid())
        throw openError(identifierOf(device));
    const auto sequence = calls.diskSequence(descriptor.get());
    if (sequence ? *sequence != m_number : !isStillThere())
        throw diskNotFound(m_argument);
    return descriptor;
}

Descriptor LiveDevice::lock(KernelCalls &calls) const
{
    using namespace std::chrono_literals;
    constexpr int kTries = 100;
    Descriptor disk = open(*m_disk, O_RDONLY, calls);
    for (int tries = 0; ::flock(disk.get(), LOCK_EX | LOCK_NB) != 0; ++tries) {
        if (tries == kTries)
            throw eraseRefusal(fmt::format("{} is locked by another program", identifierOf(*m_disk)));
        std::this_thread::sleep_for(100ms); // udev holds it while it reads the disk.
    }
    return disk;
}

/// For kernels that don't tell the number of an open disk: whether the name still stands for it.
bool LiveDevice::isStillThere() const
{
    const BlockDevices now(m_devices.roots());
    const BlockDevice *const disk = now.byName(m_disk->name);
    return disk && diskNumber(now, *disk) == m_number;
}

} // namespace brindle::tools
