#include "assembly/ProcessStart.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace brindle {

namespace {

/// A standard descriptor that was closed at the start would be given to the next file opened, and output would go
/// there.
void openStandardDescriptors()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) < 0)
            open("/dev/null", O_RDWR);
    }
}

/// No image of this process or of what it starts, which may hold the administrator's password, is ever written.
void forbidCoreImages()
{
    constexpr rlimit kNone{.rlim_cur = 0, .rlim_max = 0};
    setrlimit(RLIMIT_CORE, &kNone);
}

} // namespace

void prepareProcess()
{
    openStandardDescriptors();
    forbidCoreImages();
}

} // namespace brindle
