#pragma once

#include "acting/Actor.h"
#include "kernel/acting/KernelCalls.h"
#include "kernel/acting/LiveDevice.h"
#include "kernel/acting/MountPlaces.h"
#include "kernel/acting/Programs.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace brindle::tools {

struct NewPartition;

/// What acting needs of the system besides its devices. Tests give it folders of their own.
struct ActorRoots {
    std::string media = "/run/media";
    std::string processes = "/proc";
    std::function<VolumeUser()> user = callingUser; ///< Asked where a volume is mounted alone: it reads many files.
    Programs programs = Programs();
};

/// Acts on the disks of the running kernel.
///
/// Each action looks its device up anew, by the number that comes back for no other disk, and holds it open while it
/// acts: the name of an open device goes to no other, and the number is compared on that descriptor. What is erased
/// is opened exclusively, which the kernel refuses for whatever it makes use of itself.
class KernelActor final : public Actor {
public:
    /// The calls outlive the actor.
    KernelActor(KernelRoots kernel, ActorRoots roots, KernelCalls &calls);

    /// Below /run/media/USER, with the files of a file system without owners belonging to the calling user.
    std::string mount(const Target &target) override;

    /// With \a isForced a volume below /run/media, /media or /mnt is taken off its folder even where a program holds
    /// it; another never.
    std::string unmount(const Target &target, bool isForced) override;

    /// A volume that is mounted is unmounted for it and mounted again, also where the rename fails.
    std::string rename(const Target &target, std::string_view name) override;

    /// Who isn't root asks UDisks2, where it runs. A disk image loses its file, a removable medium is given out, and
    /// another external disk leaves the kernel.
    void eject(const Target &target) override;

    Erased eraseVolume(const Target &target, const Format &format, std::string_view name,
                       const Announce &announce) override;
    Erased eraseDisk(const Target &target, const Format &format, std::string_view name,
                     const Announce &announce) override;

private:
    [[nodiscard]] int tryToMount(const LiveDevice &live, const BlockDevice &device, std::string_view fileSystem,
                                 std::string_view label);
    [[nodiscard]] bool mountAgain(const LiveDevice &live, std::string_view fileSystem, std::string_view label);
    void endMount(const Target &target, const CarriedMount &mount, bool isForced);
    void endMountsToErase(const LiveDevice &live, const Target &target);
    void ejectAsUser(const LiveDevice &live, const std::vector<CarriedMount> &mounts) const;
    void giveOut(const LiveDevice &live, const Descriptor &disk);
    [[nodiscard]] std::string swaps() const;

    void makeFileSystem(const LiveDevice &live, const BlockDevice &device, const Format &format,
                        const std::string &label);
    void makeTable(const LiveDevice &live, const std::vector<NewPartition> &partitions);
    void activate(const LiveDevice &live, int disk, const std::vector<NewPartition> &partitions);
    void setType(const LiveDevice &live, const Device &device, const Format &format);
    void letUdevRead(const LiveDevice &live, const std::vector<BlockDevice> &changed) const;

    KernelRoots m_kernel;
    ActorRoots m_roots;
    MountPlaces m_places;
    KernelCalls &m_calls;
};

} // namespace brindle::tools
