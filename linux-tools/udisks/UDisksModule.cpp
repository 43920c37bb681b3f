#include "kernel/UDisksModule.h"

#include "udisks/UDisksHealth.h"

/// The one function of the module (see kernel/UDisksModule.h).
extern "C" int brindleUDisksHealth(const char *busAddress, const char *device)
{
    constexpr std::chrono::milliseconds kLimit{500};
    return static_cast<int>(brindle::tools::udisksHealth(busAddress, device, kLimit));
}
