#include "kernel/UDisksModule.h"

#include "udisks/UDisksEject.h"
#include "udisks/UDisksHealth.h"

// The functions of the module (see kernel/UDisksModule.h).

extern "C" int brindleUDisksHealth(const char *busAddress, const char *device)
{
    constexpr std::chrono::milliseconds kLimit{500};
    return static_cast<int>(brindle::tools::udisksHealth(busAddress, device, kLimit));
}

extern "C" int brindleUDisksEject(const char *busAddress, const char *device, const char *const *mounted,
                                  unsigned count, char *refusal, unsigned refusalSize)
{
    constexpr std::chrono::minutes kLimit{2}; // Much may have to be written to a slow stick.
    const std::string said = brindle::tools::udisksEject(busAddress, device, {mounted, mounted + count}, kLimit);
    refusal[said.copy(refusal, refusalSize - 1)] = '\0';
    return said.empty() ? 0 : 1;
}
