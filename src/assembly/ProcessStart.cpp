#include "assembly/ProcessStart.h"

#include "platform/CoreImages.h"

#include <csignal>
#include <initializer_list>

#include <fcntl.h>
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

} // namespace

void prepareProcess()
{
    openStandardDescriptors();
    std::signal(SIGPIPE, SIG_IGN); // a reader that goes stops no work, which may have something to clean up
    forbidCoreImages();
}

} // namespace brindle
