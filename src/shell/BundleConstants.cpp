#include "shell/BundleConstants.h"

#include "base/Log.h"

namespace brindle {

BundleConstants::BundleConstants(const BundleInfo &bundle)
    : identifier(bundle.identifier.value_or(std::string(kBundleIdentifier))),
      version(bundle.shortVersion.value_or("1.0")),
      build(bundle.version.value_or("1"))
{
    if (identifier != kLegacyBundleIdentifier)
        return;
    Log::line("⚠️ WARNING: Using legacy bundle ID '{}'", kLegacyBundleIdentifier);
    Log::line("   Consider updating to '{}' in Info.plist", kBundleIdentifier);
}

} // namespace brindle
