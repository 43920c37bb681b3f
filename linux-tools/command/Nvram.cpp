#include "command/Command.h"

#include "text/NvramText.h"

namespace brindle::tools {
namespace {

constexpr std::string_view kUsage = "Usage:  nvram NAME\n"
                                    "Prints a variable of the firmware. NAME is a plain name or GUID:name.\n";

} // namespace

int runNvram(Context &context, Arguments arguments)
{
    if (arguments.size() != 1 || arguments.front().starts_with('-')) {
        const bool isAsked = arguments.size() == 1 && isHelp(arguments.front());
        (isAsked ? context.out : context.err) += kUsage;
        return isAsked ? kDone : kWrongUsage;
    }
    const auto variable = context.source.nvramVariable(arguments.front());
    if (!variable) {
        context.err += nvramMissingText(arguments.front());
        return kFailed;
    }
    context.out += nvramText(arguments.front(), variable->value);
    return kDone;
}

} // namespace brindle::tools
