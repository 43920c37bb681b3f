#pragma once

#include "base/RawValue.h"
#include "records/PhysicalDisk.h"
#include "shell/Color.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace brindle {

/// What the status icon tells of the mounted EFI partitions. The raw value is the name that logs and commands give it.
enum class IconState {
    defaultState, ///< Nothing is mounted; "default", which is a word of the language.
    openCoreMounted,
    cloverMounted,
    macOSEFIMounted,
    windowsEFIMounted,
    linuxEFIMounted,
    exfatEFIMounted,
    genericEFIMounted,
};

template <>
inline constexpr std::array kRawValues<IconState> =
    std::to_array<std::string_view>({"default", "openCoreMounted", "cloverMounted", "macOSEFIMounted",
                                     "windowsEFIMounted", "linuxEFIMounted", "exfatEFIMounted", "genericEFIMounted"});

/// The colour in which the icon is drawn; nullopt where it takes that of its surroundings.
[[nodiscard]] std::optional<Color> colorOf(IconState state);

/// Looks at the files on the mounted EFI partitions, and not at what the records say of boot loaders, so that it tells
/// what really lies there. A boot loader on any of them beats the system of every disk, whatever the order of disks is.
[[nodiscard]] IconState iconState(bool hasCompletedInitialScan, const std::vector<PhysicalDisk> &disks);

} // namespace brindle
