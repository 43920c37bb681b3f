#pragma once

#include "acting/Format.h"
#include "inventory/FindDevice.h"

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace brindle::tools {

/// An action was refused or failed. The text is what the tool prints on standard error, without a newline at its end.
class ActionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What an action is done to.
struct Target {
    std::string argument; ///< As it was typed, made printable: messages repeat it.
    Device device;

    /// "disk2", "disk2s1": of the APFS volume, container, partition or disk that the device is.
    [[nodiscard]] const std::string &identifier() const;
};

/// What an erased disk or volume is now.
struct Erased {
    std::string identifier;      ///< Of the partition or volume that bears the new file system.
    std::string label;           ///< As it was written.
    std::uint64_t sizeBytes = 0; ///< Of the partition or disk.
    bool isMounted = false;
};

/// Is told what is being made, once what was there is gone and before the new file system is made, which may take long.
using Announce = std::function<void(const Erased &)>;

/// Acts on the disks of a machine: of the running kernel, or of a machine file. Every action throws ActionError, and
/// changes nothing then unless it says so. Names are data, fitted to the file system by the actor.
class Actor {
public:
    Actor() = default;
    Actor(const Actor &) = delete;
    Actor &operator=(const Actor &) = delete;
    virtual ~Actor() = default;

    /// Gives the volume's name. A volume that is mounted stays as it is.
    virtual std::string mount(const Target &target) = 0;

    /// Gives the volume's name. With \a isForced also a volume that is in use. One that isn't mounted stays as it is.
    virtual std::string unmount(const Target &target, bool isForced) = 0;

    /// Gives the label as it was written.
    virtual std::string rename(const Target &target, std::string_view name) = 0;

    /// Unmounts all of the disk that the target is or lies on and gives its medium out.
    virtual void eject(const Target &target) = 0;

    /// Makes a new file system in the place of one; an EFI partition keeps its type and its UUID. What was mounted is
    /// unmounted first.
    virtual Erased eraseVolume(const Target &target, const Format &format, std::string_view name,
                               const Announce &announce) = 0;

    /// Makes a new GPT with an EFI partition of 200 MB and one volume behind it.
    virtual Erased eraseDisk(const Target &target, const Format &format, std::string_view name,
                             const Announce &announce) = 0;
};

} // namespace brindle::tools
