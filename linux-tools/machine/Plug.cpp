#include "machine/Plug.h"

#include "acting/Actor.h"
#include "machine/FileIo.h"
#include "machine/MachineEdit.h"
#include "text/Words.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <ranges>
#include <system_error>

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
        throw ActionError(fmt::format("There is no disk {} {}", printable(name), where));
    if (count > 1)
        throw ActionError(fmt::format("{} is the name of {} disks: use an identifier", printable(name), count));
    return *std::ranges::find_if(disks, isNamed);
}

bool liesIn(const fs::path &path, const fs::path &folder)
{
    return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first == folder.end();
}

/// Where the copy of \a link, which lies in the machine \a from, leads: within the machine to the same place of the
/// copy, and beyond it to the same file.
fs::path copiedTarget(const fs::path &link, const fs::path &from)
{
    const fs::path folder = link.parent_path();
    const fs::path target = (folder / fs::read_symlink(link)).lexically_normal();
    return liesIn(target, from) ? target.lexically_relative(folder) : target;
}

/// Copies a file, folder or link. The machine file is copied also where it is a link: no two machines share one.
void copyEntry(const fs::directory_entry &entry, const fs::path &from, const fs::path &to)
{
    if (entry.is_symlink() && entry.path() != from / kMachineFileName) {
        fs::create_symlink(copiedTarget(entry.path(), from), to);
        return;
    }
    if (entry.is_directory())
        fs::create_directory(to);
    else if (entry.is_regular_file())
        fs::copy_file(entry.path(), to);
    else
        return; // A pipe or a socket is no file of a volume.
    // What is installed for all may be read-only; a copy is there to be changed.
    fs::permissions(to, fs::perms::owner_write, fs::perm_options::add);
}

/// Fills the folder \a to. Where that fails, nothing of the copy is left.
void fillCopy(const fs::path &from, const fs::path &to)
{
    const bool isNew = fs::create_directories(to);
    try {
        for (const fs::directory_entry &entry : fs::recursive_directory_iterator(from))
            copyEntry(entry, from, to / entry.path().lexically_relative(from));
        MachineFile(to).settle();
    } catch (...) {
        for (const fs::directory_entry &entry : fs::directory_iterator(to))
            fs::remove_all(entry);
        if (isNew)
            fs::remove(to);
        throw;
    }
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
        const fs::path source = fs::canonical(from);
        const fs::path copy = fs::weakly_canonical(fs::absolute(to));
        if (liesIn(copy, source))
            throw MachineFileError(fmt::format("{} lies in the machine that is to be copied", to.string()));
        if (fs::exists(copy) && !fs::is_empty(copy))
            throw MachineFileError(fmt::format("{} is there already", to.string()));
        const FolderLock lock(source);
        (void)MachineFile(source).read();
        fillCopy(source, copy);
    } catch (const std::system_error &error) {
        throw MachineFileError(error.what());
    }
}

} // namespace brindle::tools
