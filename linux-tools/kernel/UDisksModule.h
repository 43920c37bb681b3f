#pragma once

#include "inventory/Inventory.h"

#include <optional>
#include <string>
#include <vector>

extern "C" {
int brindleUDisksHealth(const char *busAddress, const char *device);
int brindleUDisksEject(const char *busAddress, const char *device, const char *const *mounted, unsigned count,
                       char *refusal, unsigned refusalSize);
}

namespace brindle::tools {

/// What UDisks2 knows of a disk's health (udisksHealth()), where there is a system bus.
///
/// sd-bus is in a module that is loaded here: linked to the tools it would cost every call 0.5 ms, and only who isn't
/// root and asks for a whole disk needs it. Without the module, or without a bus, nothing is known.
/// \param busAddress as D-Bus writes it, "unix:path=/run/dbus/system_bus_socket"
[[nodiscard]] Smart healthFromUDisks(const std::string &busAddress, const std::string &device);

/// Ejects a disk as a user who isn't root (udisksEject()); `nullopt` where there is no UDisks2 to ask, else what it
/// says where it refuses, and "" where it is done.
[[nodiscard]] std::optional<std::string> ejectThroughUDisks(const std::string &busAddress, const std::string &device,
                                                            const std::vector<std::string> &mounted);

/// The address of the system's bus: DBUS_SYSTEM_BUS_ADDRESS, else the usual one.
[[nodiscard]] std::string systemBusAddress();

} // namespace brindle::tools
