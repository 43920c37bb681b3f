#pragma once

#include "platform/BundleInfo.h"
#include "platform/SystemValues.h"

namespace brindle {

/// What the report of a launch is about.
struct LaunchFacts {
    const BundleInfo &bundle;
    const SystemValues &system;
    bool hasUpdater = false; ///< The library that updates the application can be loaded.
};

/// Writes to the log what the process finds of its own bundle and of the system, so that the log of a launch that fails
/// on a new system tells why. Decides nothing.
void writeLaunchValidation(const LaunchFacts &facts);

} // namespace brindle
