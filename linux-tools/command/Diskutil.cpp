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

namespace brindle::tools {
namespace {

struct Verb {
    std::string_view name;
    std::string_view usage; ///< What stands behind the name.
    std::string_view help;
    int (*run)(Context &, const Verb &, Arguments);
};

std::string usageOf(const Verb &verb)
{
    return fmt::format("Usage:  diskutil {} {}\n{}.\n", verb.name, verb.usage, verb.help);
}

int complainAboutUsage(Context &context, const Verb &verb)
{
    context.err += usageOf(verb);
    return kWrongUsage;
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

int list(Context &context, const Verb &verb, Arguments arguments)
{
    if (arguments.size() > 1 || (arguments.size() == 1 && arguments.front().empty()))
        return complainAboutUsage(context, verb);
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

int info(Context &context, const Verb &verb, Arguments arguments)
{
    if (arguments.size() != 1 || arguments.front().empty())
        return complainAboutUsage(context, verb);
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

int act(Context &context, const Verb &verb, Arguments arguments)
{
    if (context.actor) {
        ignoreHangUps();
        const int status = runActingVerb(context, verb.name, arguments);
        return status == kWrongUsage ? complainAboutUsage(context, verb) : status;
    }
    context.err += fmt::format("diskutil {} is not supported yet on this system's disks\n", verb.name);
    return kFailed;
}

constexpr std::array kVerbs{
    Verb{"list", "[physical | DISK]", "Lists all disks, the physical ones, or one, with their partitions", list},
    Verb{"info", "DISK", "Tells what is known of a disk or partition", info},
    Verb{"mount", "DISK", "Mounts a volume", act},
    Verb{"unmount", "[force] DISK", "Unmounts a volume", act},
    Verb{"rename", "DISK NAME", "Gives a volume a new name", act},
    Verb{"eject", "DISK", "Unmounts all volumes of a disk and lets it go", act},
    Verb{"eraseVolume", "FORMAT NAME DISK", "Makes a new file system on a volume", act},
    Verb{"eraseDisk", "FORMAT NAME [GPT] DISK", "Makes a new table and file system on a whole disk", act},
};

std::string helpText()
{
    std::string text = "Usage:  diskutil VERB [ARGUMENTS]\n        diskutil help [VERB]\n\n";
    for (const Verb &verb : kVerbs)
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
    const auto verb = std::ranges::find(kVerbs, name, &Verb::name);
    if (verb == kVerbs.end()) {
        context.err += fmt::format("diskutil: did not recognize verb \"{}\"; type \"diskutil --help\" for a list\n",
                                   printable(name));
        return kWrongUsage;
    }
    if (asksForHelp || (arguments.size() == 2 && isHelp(arguments[1]))) {
        context.out += usageOf(*verb);
        return kDone;
    }
    return verb->run(context, *verb, arguments.subspan(1));
}

} // namespace brindle::tools
