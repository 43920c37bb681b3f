#include "acting/ActingVerbs.h"

#include "text/Words.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <csignal>

namespace brindle::tools {
namespace {

using Arguments = std::span<const std::string>;

constexpr int kRefused = 1;
constexpr std::string_view kDevices = "/dev/";

/// The arguments are not those of the verb. The text tells which they are.
class UsageError : public ActionError {
public:
    explicit UsageError(std::string_view usage) : ActionError(fmt::format("Usage: diskutil {}", usage)) {}
};

/// Whether the argument names the device by itself or its place, and not by the name of its volume.
bool namesThePlace(const Inventory &inventory, const Target &target)
{
    std::string_view argument = target.argument;
    const Device &device = target.device;
    const bool isNode = (device.partition && device.partition->node == argument) ||
                        (!device.partition && device.disk && device.disk->node == argument);
    const auto isItsPlace = [&](const Mount &mount) { return mount.mountPoint == argument; };
    if (isNode || std::ranges::any_of(inventory.mounts, isItsPlace))
        return true;
    argument.remove_prefix(argument.starts_with(kDevices) ? kDevices.size() : 0);
    return argument == target.identifier();
}

/// What the actions need: the whole machine, for a name may stand for any of its volumes.
Inventory readAll(InventorySource &source)
{
    Scope scope;
    scope.withVolumes = true;
    scope.withMounts = true;
    return source.read(scope);
}

Target findTarget(const Inventory &inventory, const std::string &argument)
{
    const auto device = findDevice(inventory, argument);
    if (!device)
        throw ActionError(fmt::format("Unable to find disk for {}", argument));
    Target target{argument, *device};
    const int bearers = volumesNamed(inventory, argument);
    if (bearers > 1 && !namesThePlace(inventory, target))
        throw ActionError(fmt::format("{} is the name of {} volumes: use an identifier", argument, bearers));
    return target;
}

const Format &findFormatOrThrow(const std::string &name)
{
    const Format *const format = findFormat(name);
    if (!format)
        throw ActionError(fmt::format("{} does not appear to be a valid file system format or partition type\n"
                                      "Formats: ExFAT, FAT32, JHFS+, HFS+, APFS",
                                      name));
    return *format;
}

/// One call of the tool: what it acts with and what it has printed so far.
struct Call {
    InventorySource &source;
    Actor &actor;
    std::string output;

    template <typename... Values>
    void print(fmt::format_string<Values...> text, Values &&...values)
    {
        output += fmt::format(text, std::forward<Values>(values)...) + '\n';
    }
};

void mount(Call &call, Arguments arguments)
{
    if (arguments.size() != 1)
        throw UsageError("mount DISK");
    const Inventory inventory = readAll(call.source);
    const std::string name = call.actor.mount(findTarget(inventory, arguments[0]));
    call.print("Volume {} on {} mounted", printable(name), arguments[0]);
}

void unmount(Call &call, Arguments arguments)
{
    const bool isForced = arguments.size() == 2 && arguments[0] == "force";
    if (arguments.size() != 1 && !isForced)
        throw UsageError("unmount [force] DISK");
    const Inventory inventory = readAll(call.source);
    const std::string name = call.actor.unmount(findTarget(inventory, arguments.back()), isForced);
    call.print("Volume {} on {} {}unmounted", printable(name), arguments.back(), isForced ? "force-" : "");
}

void rename(Call &call, Arguments arguments)
{
    if (arguments.size() != 2)
        throw UsageError("rename DISK NAME");
    const Inventory inventory = readAll(call.source);
    const std::string label = call.actor.rename(findTarget(inventory, arguments[0]), arguments[1]);
    call.print("Volume on {} renamed to {}", arguments[0], label);
}

void eject(Call &call, Arguments arguments)
{
    if (arguments.size() != 1)
        throw UsageError("eject DISK");
    const Inventory inventory = readAll(call.source);
    call.actor.eject(findTarget(inventory, arguments[0]));
    call.print("Disk {} ejected", arguments[0]);
}

void eraseVolume(Call &call, Arguments arguments)
{
    if (arguments.size() != 3)
        throw UsageError("eraseVolume FORMAT NAME DISK");
    const Format &format = findFormatOrThrow(arguments[0]);
    const Inventory inventory = readAll(call.source);
    const Target target = findTarget(inventory, arguments[2]);
    call.print("Started erase on {}\nUnmounting disk", target.identifier());
    const Erased erased = call.actor.eraseVolume(target, format, arguments[1]);
    call.print("Erasing\nFormatted {} as {} with name {}", erased.identifier, format.title, erased.label);
    call.print("Finished erase on {} {}", erased.identifier, erased.label);
}

void eraseDisk(Call &call, Arguments arguments)
{
    const bool hasScheme = arguments.size() == 4;
    if (arguments.size() != 3 && !hasScheme)
        throw UsageError("eraseDisk FORMAT NAME [GPT] DISK");
    if (hasScheme && upperCased(arguments[2]) != "GPT")
        throw ActionError(fmt::format("{} does not appear to be a valid partition scheme: only GPT is", arguments[2]));
    const Format &format = findFormatOrThrow(arguments[0]);
    const Inventory inventory = readAll(call.source);
    const Target target = findTarget(inventory, arguments.back());
    call.print("Started erase on {}\nUnmounting disk", target.identifier());
    const Erased erased = call.actor.eraseDisk(target, format, arguments[1]);
    call.print("Creating the partition map\nWaiting for partitions to activate");
    call.print("Formatting {} as {} with name {}", erased.identifier, format.title, erased.label);
    call.print("Finished erase on {}", target.identifier());
}

struct Verb {
    std::string_view name; ///< In upper case, for the tool takes any.
    void (*run)(Call &call, Arguments arguments);
};

constexpr std::array kVerbs{
    Verb{"MOUNT", mount}, Verb{"UNMOUNT", unmount},         Verb{"RENAME", rename},
    Verb{"EJECT", eject}, Verb{"ERASEVOLUME", eraseVolume}, Verb{"ERASEDISK", eraseDisk},
};

const Verb *findVerb(std::string_view name)
{
    const auto *const found = std::ranges::find(kVerbs, upperCased(name), &Verb::name);
    return found == kVerbs.end() ? nullptr : found;
}

} // namespace

const std::string &Target::identifier() const
{
    if (device.apfsVolume)
        return device.apfsVolume->identifier;
    if (device.container)
        return device.container->identifier;
    return device.partition ? device.partition->identifier : device.disk->identifier;
}

bool isActingVerb(std::string_view verb)
{
    return findVerb(verb) != nullptr;
}

Outcome runActingVerb(std::string_view verb, Arguments arguments, InventorySource &source, Actor &actor)
{
    Call call{source, actor, {}};
    try {
        findVerb(verb)->run(call, arguments);
    } catch (const ActionError &error) {
        return {kRefused, call.output, std::string(error.what()) + '\n'};
    }
    return {0, call.output, {}};
}

void ignoreHangUps()
{
    std::signal(SIGHUP, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
}

} // namespace brindle::tools
