#include "platform/linux/LinuxBundleInfo.h"

#include "base/ApplicationDescription.h"

namespace brindle {

BundleInfo linuxBundleInfo()
{
    using namespace ApplicationDescription;
    return {.identifier = kIdentifier,
            .shortVersion = kVersion,
            .version = kBuild,
            .displayName = kDisplayName,
            .name = kName,
            .executable = kExecutable};
}

} // namespace brindle
