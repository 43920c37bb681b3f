#include "assembly/ProcessStart.h"
#include "cli/CommandLine.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    brindle::prepareProcess();
    QCoreApplication application(argc, argv);
    return brindle::runCommandLine(argc, argv);
}
