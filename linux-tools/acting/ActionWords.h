#pragma once

#include "acting/Actor.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace brindle::tools {

// What the platform's tool says of actions that were refused or failed.

inline constexpr std::string_view kUnsupported = "Perhaps the operation is not supported (kDAReturnUnsupported)";
inline constexpr std::string_view kNotPermitted = "Perhaps the operation is not appropriate (kDAReturnNotPermitted)";
inline constexpr std::string_view kNotPrivileged =
    "Perhaps the operation is not allowed by the invoking user (kDAReturnNotPrivileged)";
inline constexpr std::string_view kCantUnmount = "Error: -69888: Couldn't unmount disk";
inline constexpr std::string_view kCantOpen = "Error: -69877: Couldn't open device";

/// Who keeps a volume from being unmounted.
struct Dissenter {
    std::uint64_t pid = 0;
    std::string program; ///< "/usr/bin/tail"
    std::uint64_t parentPid = 1;
    std::string parent = "/sbin/launchd";
};

/// What stands for the system itself, which never lets its own volumes go.
[[nodiscard]] Dissenter systemDissenter();

[[nodiscard]] ActionError diskNotFound(std::string_view argument);

/// \a reason is one of the sentences above, or another. The device tells what advice is given.
[[nodiscard]] ActionError mountFailure(const Target &target, std::string_view reason);

[[nodiscard]] ActionError unmountRefusal(const Target &target, std::string_view volumeName, std::string_view reason);
[[nodiscard]] ActionError unmountDissent(const Target &target, std::string_view volumeName, const Dissenter &dissenter);
[[nodiscard]] ActionError renameFailure(const Target &target, std::string_view reason);

/// \param disk "disk2"
[[nodiscard]] ActionError ejectDissent(std::string_view disk, const Dissenter &dissenter);
[[nodiscard]] ActionError ejectFailure(std::string_view disk, std::string_view reason);

/// "disk2s1 is in use by md127"
[[nodiscard]] std::string inUse(std::string_view identifier, std::string_view holder);

/// An erase of what can't be unmounted; \a reason may be empty.
[[nodiscard]] ActionError eraseRefusal(std::string_view reason);

// What an erase asks for before anything is done; each throws ActionError.

void requireWritable(const Device &device);

/// A whole disk with a table has no file system of its own; an EFI partition keeps its type, and an APFS container
/// needs its own. What a volume gets must hold the format.
void requireVolumeFor(const Format &format, const Target &target);

/// What a whole disk needs at least, in bytes, to be given an EFI partition and a volume.
inline constexpr std::uint64_t kSmallestDiskBytes = 256 * 1024 * 1024;

/// A whole disk that has kSmallestDiskBytes, and room for the format beside the EFI partition.
void requireDiskForTable(const Format &format, const Target &target);

} // namespace brindle::tools
