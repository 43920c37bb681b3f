#include "command/Command.h"

#include "text/DfText.h"

namespace brindle::tools {
namespace {

constexpr std::string_view kUsage = "Usage:  df [-k]\n"
                                    "Tells how full the mounted file systems of the disks are, in blocks of 512 bytes "
                                    "or, with -k, of 1024.\n";

} // namespace

int runDf(Context &context, Arguments arguments)
{
    const std::string_view option = arguments.empty() ? std::string_view() : arguments.front();
    if (arguments.size() == 1 && isHelp(option)) {
        context.out += kUsage;
        return kDone;
    }
    if (arguments.size() > 1 || (arguments.size() == 1 && option != "-k")) {
        context.err += kUsage;
        return kWrongUsage;
    }
    constexpr std::uint64_t kKilobyte = 1024;
    constexpr std::uint64_t kBlock = 512;
    const Inventory inventory = context.source.read({.name = {}, .withMounts = true, .withSpace = true});
    context.out += dfText(inventory.mounts, option == "-k" ? kKilobyte : kBlock);
    return kDone;
}

} // namespace brindle::tools
