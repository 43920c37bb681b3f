#include "app/Arguments.h"

namespace brindle {

Arguments readArguments(const std::vector<std::string> &arguments)
{
    Arguments result;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string &argument = arguments[i];
        if (argument == "--help" || argument == "-h")
            result.help = true;
        else if (argument == "--version")
            result.version = true;
        else if (argument == "--demo" || argument == "--demo=ask")
            result.demo = true;
        else if (argument == "-launchMode")
            ++i;
        else if (result.unknown.empty())
            result.unknown = argument;
        if (argument == "--demo=ask")
            result.demoAsksForPassword = true;
    }
    return result;
}

} // namespace brindle
