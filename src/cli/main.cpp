#include "cli/CommandLine.h"
#include "platform/CoreImages.h"

#include <QCoreApplication>

#include <fcntl.h>
#include <unistd.h>

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

int main(int argc, char **argv)
{
    openStandardDescriptors();
    brindle::forbidCoreImages();
    QCoreApplication application(argc, argv);
    return brindle::runCommandLine(argc, argv);
}
