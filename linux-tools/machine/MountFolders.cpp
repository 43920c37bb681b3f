#include "machine/MountFolders.h"

#include "acting/VolumeLabel.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace brindle::tools {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kContents = "contents";
constexpr std::uint64_t kClusterBytes = 4096;

bool contains(const std::vector<Mount> &mounts, const std::string &mountPoint)
{
    return std::ranges::find(mounts, mountPoint, &Mount::mountPoint) != mounts.end();
}

/// Whether \a mount of \a before goes on in \a after with the same files.
bool goesOn(const Mount &mount, const Machine &before, const Machine &after)
{
    return std::ranges::any_of(after.inventory.mounts, [&](const Mount &other) {
        return other.carrier == mount.carrier && other.mountPoint == mount.mountPoint &&
               before.carriers.at(mount.carrier).content == after.carriers.at(mount.carrier).content;
    });
}

std::set<std::string> contentsOf(const Machine &machine)
{
    std::set<std::string> contents;
    for (const auto &[identifier, carrier] : machine.carriers)
        contents.insert(carrier.content);
    return contents;
}

void move(const fs::path &from, const fs::path &to)
{
    fs::create_directories(to.parent_path());
    fs::rename(from, to);
}

fs::path existingOr(const fs::path &first, const fs::path &second)
{
    std::error_code unreadable; // A folder of links that lead to each other, or one that isn't ours, is none.
    return fs::exists(first, unreadable) ? first : second;
}

} // namespace

bool isSystemMount(const Mount &mount)
{
    return mount.mountPoint.starts_with('/');
}

MountFolders::MountFolders(fs::path root) : m_root(std::move(root)) {}

void MountFolders::settle(const Machine &machine) const
{
    for (const Mount &mount : machine.inventory.mounts) {
        const fs::path folder = m_root / mount.mountPoint;
        if (isSystemMount(mount) || fs::exists(folder))
            continue;
        const fs::path home = this->home(machine, mount.carrier);
        if (fs::exists(home))
            move(home, folder);
        else
            fs::create_directories(folder);
    }
}

void MountFolders::detach(const Machine &before, const Machine &after) const
{
    for (const Mount &mount : before.inventory.mounts) {
        if (!isSystemMount(mount) && !goesOn(mount, before, after))
            move(m_root / mount.mountPoint, home(before, mount.carrier));
    }
}

void MountFolders::attach(const Machine &before, const Machine &after) const
{
    const std::set<std::string> kept = contentsOf(after);
    for (const std::string &content : contentsOf(before)) {
        if (!kept.contains(content))
            fs::remove_all(m_root / kContents / content);
    }
    settle(after);
}

std::string MountFolders::freeMountPoint(const Machine &machine, std::string_view name,
                                         const std::vector<Mount> &ending) const
{
    const auto isTaken = [&](const std::string &mountPoint) {
        return !contains(ending, mountPoint) &&
               (contains(machine.inventory.mounts, mountPoint) || fs::exists(fs::symlink_status(m_root / mountPoint)));
    };
    const std::string first = "Volumes/" + folderNameOf(name);
    std::string mountPoint = first;
    for (int number = 1; isTaken(mountPoint); ++number)
        mountPoint = fmt::format("{} {}", first, number);
    return mountPoint;
}

std::uint64_t MountFolders::usedBytes(const Machine &machine, const std::string &carrier) const
{
    std::error_code error;
    std::uint64_t bytes = 0;
    const auto end = fs::recursive_directory_iterator();
    for (auto file = fs::recursive_directory_iterator(filesOf(machine, carrier), error); !error && file != end;
         file.increment(error)) {
        std::error_code vanished;
        const std::uint64_t size = file->is_regular_file(vanished) ? file->file_size(vanished) : kClusterBytes;
        if (!vanished)
            bytes += (size + kClusterBytes - 1) / kClusterBytes * kClusterBytes;
    }
    return bytes;
}

fs::path MountFolders::filesOf(const Machine &machine, const std::string &carrier) const
{
    const auto mount = std::ranges::find(machine.inventory.mounts, carrier, &Mount::carrier);
    if (mount == machine.inventory.mounts.end() || isSystemMount(*mount))
        return home(machine, carrier);
    return existingOr(m_root / mount->mountPoint, home(machine, carrier));
}

fs::path MountFolders::home(const Machine &machine, const std::string &carrier) const
{
    return m_root / kContents / machine.carriers.at(carrier).content;
}

} // namespace brindle::tools
