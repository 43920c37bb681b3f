#include "command/Command.h"

#include "acting/ActingVerbs.h"
#include "inventory/FindDevice.h"
#include "text/DiskutilText.h"
#include "text/Words.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <vector>

namespace brindle::tools {
namespace {

std::string usageOf(const Verb &verb)
{
    return fmt::format("Usage:  diskutil {} {}\n{}.\n", verb.name, verb.usage, verb.help);
}

void tellNotes(Context &context, const Inventory &inventory)
{
    for (const std::string &note : inventory.notes)
        context.err += fmt::format("diskutil: {}\n", printable(note));
}

int complainAboutName(Context &context, const Inventory &inventory, std::string_view name)
{
    context.err += fmt::format("Could not find disk: {}\n", printable(name));
    tellNotes(context, inventory);
    return kFailed;
}

int list(Context &context, const Verb &, Arguments arguments)
{
    if (arguments.size() > 1 || (arguments.size() == 1 && arguments.front().empty()))
        return kWrongUsage;
    const std::string_view name = arguments.empty() ? std::string_view() : arguments.front();
    if (name.empty() || name == "physical") {
        const Inventory inventory = context.source.read({.name = {}, .withContents = true});
        context.out += name.empty() ? listText(inventory) : listPhysicalText(inventory);
        tellNotes(context, inventory);
        return kDone;
    }
    const Inventory inventory =
        context.source.read({.name = std::string(name), .withContents = true, .withMounts = true});
    const auto device = findDevice(inventory, name);
    if (!device)
        return complainAboutName(context, inventory, name);
    context.out += listText(*device);
    tellNotes(context, inventory);
    return kDone;
}

int info(Context &context, const Verb &, Arguments arguments)
{
    if (arguments.size() != 1 || arguments.front().empty())
        return kWrongUsage;
    const std::string_view name = arguments.front();
    const Inventory inventory = context.source.read(
        {.name = std::string(name), .onlyNamed = true, .withContents = true, .withDetails = true, .withMounts = true});
    const auto device = findDevice(inventory, name);
    if (!device)
        return complainAboutName(context, inventory, name);
    context.out += infoText(*device);
    tellNotes(context, inventory);
    return kDone;
}

constexpr std::array kTellingVerbs{
    Verb{"list", "[physical | DISK]", "Lists all disks, the physical ones, or one, with their partitions", list},
    Verb{"info", "DISK", "Tells what is known of a disk or partition", info},
};

std::vector<Verb> allVerbs()
{
    std::vector<Verb> verbs(kTellingVerbs.begin(), kTellingVerbs.end());
    std::ranges::copy(actingVerbs(), std::back_inserter(verbs));
    return verbs;
}

std::string helpText()
{
    std::string text = "Usage:  diskutil VERB [ARGUMENTS]\n        diskutil help [VERB]\n\n";
    for (const Verb &verb : allVerbs())
        fmt::format_to(std::back_inserter(text), "   {:<36} {}\n", fmt::format("{} {}", verb.name, verb.usage),
                       verb.help);
    return text + "\nDISK is an identifier (disk2, disk2s1), a device node or a link to one, a mount point or a "
                  "volume's name.\n";
}

} // namespace

int runDiskutil(Context &context, Arguments arguments)
{
    if (arguments.empty()) {
        context.err += helpText();
        return kWrongUsage;
    }
    const bool asksForHelp = isHelp(arguments.front()) || arguments.front() == "help";
    if (asksForHelp && arguments.size() == 1) {
        context.out += helpText();
        return kDone;
    }
    const std::string_view name = asksForHelp ? arguments[1] : arguments[0];
    const std::vector<Verb> verbs = allVerbs();
    const auto verb = std::ranges::find(verbs, name, &Verb::name);
    if (verb == verbs.end()) {
        context.err += fmt::format("diskutil: did not recognize verb \"{}\"; type \"diskutil --help\" for a list\n",
                                   printable(name));
        return kWrongUsage;
    }
    if (asksForHelp || (arguments.size() == 2 && isHelp(arguments[1]))) {
        context.out += usageOf(*verb);
        return kDone;
    }
    const int status = verb->run(context, *verb, arguments.subspan(1));
    if (status == kWrongUsage)
        context.err += usageOf(*verb);
    return status;
}

} // namespace brindle::tools
