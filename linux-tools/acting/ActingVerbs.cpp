#include "acting/ActingVerbs.h"

#include "acting/ActionWords.h"
#include "acting/Actor.h"
#include "acting/EraseText.h"
#include "inventory/Identifier.h"
#include "text/Words.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <utility>

namespace brindle::tools {
namespace {

/// Whether the argument names the device by itself or its place, and not by the name of its volume.
bool namesThePlace(const Inventory &inventory, const Target &target, std::string_view argument)
{
    const Device &device = target.device;
    const bool isNode = (device.partition && device.partition->node == argument) ||
                        (!device.partition && device.disk && device.disk->node == argument);
    const auto isItsPlace = [&](const Mount &mount) { return mount.mountPoint == argument; };
    return isNode || parseIdentifier(argument) || std::ranges::any_of(inventory.mounts, isItsPlace);
}

/// What an action on what \a name stands for needs to know.
Inventory inventoryFor(InventorySource &source, std::string_view name)
{
    Scope scope;
    scope.name = name;
    scope.withContents = true;
    scope.withMounts = true;
    return source.read(scope);
}

Target findTarget(const Inventory &inventory, std::string_view argument)
{
    const auto device = findDevice(inventory, argument);
    if (!device)
        throw diskNotFound(argument);
    Target target{printable(argument), *device};
    const int bearers = volumesNamed(inventory, argument);
    if (bearers > 1 && !namesThePlace(inventory, target, argument))
        throw ActionError(fmt::format("{} is the name of {} volumes: use an identifier", printable(argument), bearers));
    return target;
}

const Format &findFormatOrThrow(std::string_view name)
{
    const Format *const format = findFormat(name);
    if (!format)
        throw ActionError(fmt::format("{} does not appear to be a valid file system format or partition type\n"
                                      "Formats: ExFAT, FAT32, JHFS+, HFS+, APFS",
                                      printable(name)));
    return *format;
}

template <typename... Values>
void print(Context &context, fmt::format_string<Values...> text, Values &&...values)
{
    context.out += fmt::format(text, std::forward<Values>(values)...) + '\n';
}

/// An erase takes long: who waits reads how far it is.
void tellSoFar(Context &context)
{
    if (context.tell)
        context.tell(std::exchange(context.out, {}));
}

void mount(Context &context, Arguments arguments)
{
    const Inventory inventory = inventoryFor(context.source, arguments[0]);
    const std::string name = context.actor->mount(findTarget(inventory, arguments[0]));
    print(context, "Volume {} on {} mounted", printable(name), printable(arguments[0]));
}

void unmount(Context &context, Arguments arguments)
{
    const bool isForced = arguments.size() == 2;
    const Inventory inventory = inventoryFor(context.source, arguments.back());
    const std::string name = context.actor->unmount(findTarget(inventory, arguments.back()), isForced);
    print(context, "Volume {} on {} {}unmounted", printable(name), printable(arguments.back()),
          isForced ? "force-" : "");
}

void rename(Context &context, Arguments arguments)
{
    const Inventory inventory = inventoryFor(context.source, arguments[0]);
    const std::string label = context.actor->rename(findTarget(inventory, arguments[0]), arguments[1]);
    print(context, "Volume on {} renamed to {}", printable(arguments[0]), label);
}

void eject(Context &context, Arguments arguments)
{
    const Inventory inventory = inventoryFor(context.source, arguments[0]);
    context.actor->eject(findTarget(inventory, arguments[0]));
    print(context, "Disk {} ejected", printable(arguments[0]));
}

void printFormatting(Context &context, const Erased &erased, const Format &format)
{
    context.out += formattingText(erased, format);
    if (erased.isMounted)
        print(context, "Mounting disk");
}

void eraseVolume(Context &context, Arguments arguments)
{
    const Format &format = findFormatOrThrow(arguments[0]);
    const Inventory inventory = inventoryFor(context.source, arguments[2]);
    const Target target = findTarget(inventory, arguments[2]);
    print(context, "Started erase on {}\nUnmounting disk", target.identifier());
    tellSoFar(context);
    const Erased erased = context.actor->eraseVolume(target, format, arguments[1], [&](const Erased &) {
        print(context, "Erasing");
        tellSoFar(context);
    });
    printFormatting(context, erased, format);
    print(context, "Finished erase on {} {}", erased.identifier, erased.label);
}

void eraseDisk(Context &context, Arguments arguments)
{
    if (arguments.size() == 4 && upperCased(arguments[2]) != "GPT")
        throw ActionError(
            fmt::format("{} does not appear to be a valid partition scheme: only GPT is", printable(arguments[2])));
    const Format &format = findFormatOrThrow(arguments[0]);
    const Inventory inventory = inventoryFor(context.source, arguments.back());
    const Target target = findTarget(inventory, arguments.back());
    print(context, "Started erase on {}\nUnmounting disk", target.identifier());
    tellSoFar(context);
    const Erased erased = context.actor->eraseDisk(target, format, arguments[1], [&](const Erased &made) {
        print(context, "Creating the partition map\nWaiting for partitions to activate");
        print(context, "Formatting {} as {} with name {}", made.identifier, format.title, made.label);
        tellSoFar(context);
    });
    printFormatting(context, erased, format);
    print(context, "Finished erase on {}", target.identifier());
}

bool isUnmount(Arguments arguments)
{
    return arguments.size() == 1 || (arguments.size() == 2 && arguments[0] == "force");
}

template <std::size_t Count>
bool hasCount(Arguments arguments)
{
    return arguments.size() == Count;
}

bool isEraseDisk(Arguments arguments)
{
    return arguments.size() == 3 || arguments.size() == 4;
}

/// Lets what was begun be ended when the terminal or the reader of the output goes.
void ignoreHangUps()
{
    std::signal(SIGHUP, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
}

template <bool (*takes)(Arguments), void (*act)(Context &, Arguments)>
int run(Context &context, const Verb &verb, Arguments arguments)
{
    if (!takes(arguments))
        return kWrongUsage;
    if (!context.actor) {
        context.err += fmt::format("diskutil {} is not supported yet on this system's disks\n", verb.name);
        return kFailed;
    }
    ignoreHangUps();
    try {
        act(context, arguments);
    } catch (const ActionError &error) {
        context.err += std::string(error.what()) + '\n';
        return kFailed;
    }
    return kDone;
}

constexpr std::array kVerbs{
    Verb{"mount", "DISK", "Mounts a volume", run<hasCount<1>, mount>},
    Verb{"unmount", "[force] DISK", "Unmounts a volume", run<isUnmount, unmount>},
    Verb{"rename", "DISK NAME", "Gives a volume a new name", run<hasCount<2>, rename>},
    Verb{"eject", "DISK", "Unmounts all volumes of a disk and lets it go", run<hasCount<1>, eject>},
    Verb{"eraseVolume", "FORMAT NAME DISK", "Makes a new file system on a volume", run<hasCount<3>, eraseVolume>},
    Verb{"eraseDisk", "FORMAT NAME [GPT] DISK", "Makes a new table and file system on a whole disk",
         run<isEraseDisk, eraseDisk>},
};

} // namespace

const std::string &Target::identifier() const
{
    if (device.apfsVolume)
        return device.apfsVolume->identifier;
    if (device.container)
        return device.container->identifier;
    return device.partition ? device.partition->identifier : device.disk->identifier;
}

std::span<const Verb> actingVerbs()
{
    return kVerbs;
}

} // namespace brindle::tools
