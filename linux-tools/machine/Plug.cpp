#include "machine/Plug.h"

#include "acting/Actor.h"
#include "machine/MachineEdit.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <ranges>

namespace brindle::tools {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

/// The one disk of \a disks that bears the identifier or, where none does, the media name.
const Disk &findDisk(const std::vector<Disk> &disks, const std::string &name, std::string_view where)
{
    const auto identified = std::ranges::find(disks, name, &Disk::identifier);
    if (identified != disks.end())
        return *identified;
    const auto isNamed = [&](const Disk &disk) { return disk.mediaName == name; };
    const auto count = std::ranges::count_if(disks, isNamed);
    if (count == 0)
        throw ActionError(fmt::format("There is no disk {} {}", name, where));
    if (count > 1)
        throw ActionError(fmt::format("{} is the name of {} disks: use an identifier", name, count));
    return *std::ranges::find_if(disks, isNamed);
}

void copyEntry(const fs::directory_entry &entry, const fs::path &to)
{
    if (entry.is_symlink())
        fs::create_symlink(fs::weakly_canonical(entry.path().parent_path() / fs::read_symlink(entry.path())), to);
    else if (entry.is_directory())
        fs::create_directory(to);
    else
        fs::copy_file(entry.path(), to);
    // What is installed for all may be read-only; a copy is there to be changed.
    if (!entry.is_symlink())
        fs::permissions(to, fs::perms::owner_write, fs::perm_options::add);
}

} // namespace

std::vector<PluggedDisk> pluggedDisks(const MachineFile &file)
{
    const Machine machine = file.read();
    std::vector<PluggedDisk> disks;
    for (const Disk &disk : machine.inventory.disks)
        disks.push_back({true, disk.identifier, disk.mediaName});
    for (const Disk &disk : machine.shelf)
        disks.push_back({false, disk.identifier, disk.mediaName});
    return disks;
}

std::string plugIn(const MachineFile &file, const std::string &name)
{
    std::string identifier;
    file.change([&](Json &json, const Machine &machine) {
        identifier = plug(json, findDisk(machine.shelf, name, "on the shelf").identifier);
    });
    return identifier;
}

void plugOut(const MachineFile &file, const std::string &name)
{
    file.change([&](Json &json, const Machine &machine) {
        const Disk &disk = findDisk(machine.inventory.disks, name, "that is plugged in");
        for (const Mount &mount : machine.inventory.mounts) {
            const auto carrier = findDevice(machine.inventory, mount.carrier);
            if (carrier->disk != &disk)
                continue;
            if (isSystemMount(mount))
                throw ActionError(fmt::format("The system runs from {}", disk.identifier));
            removeMount(json, mount.carrier);
        }
        unplug(json, disk.identifier);
    });
}

void copyMachine(const fs::path &from, const fs::path &to)
{
    try {
        if (fs::exists(to) && !fs::is_empty(to))
            throw MachineFileError(fmt::format("{} is there already", to.string()));
        fs::create_directories(to);
        for (const fs::directory_entry &entry : fs::recursive_directory_iterator(from))
            copyEntry(entry, to / entry.path().lexically_relative(from));
    } catch (const fs::filesystem_error &error) {
        throw MachineFileError(error.what());
    }
    MachineFile(to).settle();
}

} // namespace brindle::tools
