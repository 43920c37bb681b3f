#include "command/Command.h"

int main(int count, char **words)
{
    return brindle::tools::runTool(brindle::tools::runDf, count, words);
}
