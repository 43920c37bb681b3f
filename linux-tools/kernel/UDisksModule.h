#pragma once

#include "inventory/Inventory.h"

#include <string>

extern "C" int brindleUDisksHealth(const char *busAddress, const char *device);

namespace brindle::tools {

/// What UDisks2 knows of a disk's health (udisksHealth()), where there is a system bus.
///
/// sd-bus is in a module that is loaded here: linked to the tools it would cost every call 0.5 ms, and only who isn't
/// root and asks for a whole disk needs it. Without the module, or without a bus, nothing is known.
/// \param busAddress as D-Bus writes it, "unix:path=/run/dbus/system_bus_socket"
[[nodiscard]] Smart healthFromUDisks(const std::string &busAddress, const std::string &device);

/// The address of the system's bus: DBUS_SYSTEM_BUS_ADDRESS, else the usual one.
[[nodiscard]] std::string systemBusAddress();

} // namespace brindle::tools
