// Copies a folder to a path that must not exist, as the application does it: CopyFolder FROM TO.

#include "base/BlockOn.h"
#include "platform/linux/LinuxFileManager.h"

#include <QCoreApplication>

#include <cstdio>
#include <exception>

int main(int count, char **words)
{
    QCoreApplication application(count, words);
    if (count != 3)
        return 2;
    try {
        brindle::LinuxFileManager files{{}};
        brindle::blockOn(files.copyItem(words[1], words[2]));
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
