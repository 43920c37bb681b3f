#pragma once

#include "platform/BundleInfo.h"

#include <string>
#include <string_view>

namespace brindle {

inline constexpr std::string_view kBundleIdentifier = "com.orlane.Brindle";
inline constexpr std::string_view kLegacyBundleIdentifier = "com.orlane.Tansy"; ///< Of earlier versions.
inline constexpr std::string_view kApplicationName = "Brindle";

/// What the application says of its own bundle, where that says nothing too. Made once in a process.
struct BundleConstants {
    /// Where the bundle still has the legacy identifier, the log warns and the identifier stays in use.
    explicit BundleConstants(const BundleInfo &bundle);

    std::string identifier;
    std::string version;
    std::string build;
};

} // namespace brindle
