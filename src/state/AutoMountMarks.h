#pragma once

#include "platform/UserDefaults.h"

#include <map>
#include <string>

namespace brindle {

/// The disks whose EFI partition is mounted by itself when they are plugged in: for each, by its media UUID, the name
/// that it had when it was marked. Identifiers of disks change from boot to boot, the UUID doesn't.
using AutoMountMarks = std::map<std::string, std::string>;

/// The stored marks. None where any stored name is no text: such a store is not the program's own.
[[nodiscard]] AutoMountMarks autoMountMarks(const UserDefaults &defaults);

/// Replaces the stored marks.
void setAutoMountMarks(UserDefaults &defaults, const AutoMountMarks &marks);

} // namespace brindle
