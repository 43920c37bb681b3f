#pragma once

#include <optional>
#include <string>

namespace brindle {

/// What the application's package says of itself; absent where it doesn't say.
///
/// The names are those of a macOS bundle's information dictionary. A test writes its own.
struct BundleInfo {
    std::optional<std::string> identifier;   ///< CFBundleIdentifier, in reverse domain order.
    std::optional<std::string> shortVersion; ///< CFBundleShortVersionString: what people call the version.
    std::optional<std::string> version;      ///< CFBundleVersion: the build's number.
    std::optional<std::string> displayName;  ///< CFBundleDisplayName: what the desktop shows.
    std::optional<std::string> name;         ///< CFBundleName.
    std::optional<std::string> executable;   ///< CFBundleExecutable, without its folder.
};

} // namespace brindle
