#include "platform/CoreImages.h"

#include <sys/prctl.h>
#include <sys/resource.h>

namespace brindle {

void forbidCoreImages()
{
    // A limit of 0 keeps the kernel from writing a file, but not from piping the whole image to a collector that
    // core_pattern names, see core(5). 1 is what it gives to such a collector, whose own image it pipes to none; and
    // a file is not begun for 1 byte.
    constexpr rlimit kOfCollectors{.rlim_cur = 1, .rlim_max = 1};
    if (setrlimit(RLIMIT_CORE, &kOfCollectors) == 0)
        return;
    // The limit was 0 for good. This shuts out the desktop's portals too, which look at who calls them.
    prctl(PR_SET_DUMPABLE, 0);
}

} // namespace brindle
