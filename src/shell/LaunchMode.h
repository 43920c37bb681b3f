#pragma once

#include "base/RawValue.h"
#include "platform/UserDefaults.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// How the application lives: as a status item or as an ordinary window. The raw value is what the user defaults and
/// the command line call it.
enum class LaunchMode { menuBar, window };

template <>
inline constexpr std::array kRawValues<LaunchMode> = std::to_array<std::string_view>({"menubar", "window"});

/// The argument in front of a launch mode.
inline constexpr std::string_view kLaunchModeArgument = "-launchMode";

/// The mode that the user defaults tell; menuBar where they hold none or an unknown one.
[[nodiscard]] LaunchMode launchMode(const UserDefaults &defaults);

/// The mode that a process begins with: what stands behind kLaunchModeArgument in \a arguments, where that is a mode,
/// else what the user defaults tell. The log tells which of them decided.
///
/// What begins later goes by launchMode() alone, so that whoever starts a process in another mode has to store that
/// mode first.
[[nodiscard]] LaunchMode launchModeAtStart(const std::vector<std::string> &arguments, const UserDefaults &defaults);

} // namespace brindle
