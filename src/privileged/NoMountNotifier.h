#pragma once

#include "privileged/MountNotifier.h"

namespace brindle {

/// Tells nobody: for programs whose user sees how a mount ends.
class NoMountNotifier final : public MountNotifier {
public:
    void mountResult(const std::string & /*diskName*/, bool /*success*/, const std::string & /*efiIdentifier*/) override
    {
    }
    void unmountResult(const std::string & /*diskName*/, bool /*success*/) override {}
};

} // namespace brindle
