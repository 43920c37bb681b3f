#pragma once

#include "kernel/acting/LiveDevice.h"

#include <string>
#include <string_view>
#include <vector>

namespace brindle::tools {

/// What uses a part of the device and is no mount: a device that is made of it (device-mapper, md, …), or swap.
/// "disk2s1 is in use by md127"; empty for nothing.
/// \param swaps the text of /proc/swaps
[[nodiscard]] std::string holderOf(const LiveDevice &live, std::string_view swaps);

/// Whether a mount point is in a place where volumes are put that come and go: below /run/media, /media or /mnt.
[[nodiscard]] bool isPassing(std::string_view mountPoint);

/// Whether the mount is the root of the running system, which never ends.
[[nodiscard]] bool isSystemRoot(const CarriedMount &mount);

/// Throws ActionError where the device must never be erased: where something is made of a part of it, swap lies on
/// it, or a mount that is not isPassing(). What the kernel itself holds is refused beyond that when it is opened.
void requireUnused(const LiveDevice &live, std::string_view swaps);

} // namespace brindle::tools
