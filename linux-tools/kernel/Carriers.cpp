#include "kernel/Carriers.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace brindle::tools {
namespace {

constexpr std::size_t kDeepest = 16; // Mounts that lie on one another; a ring would have no end.

bool isWithin(std::string_view path, std::string_view folder)
{
    if (folder == "/")
        return path.starts_with('/');
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

/// How many leading folders two absolute paths share.
std::size_t sharedFolders(std::string_view one, std::string_view other)
{
    std::size_t shared = 0;
    std::size_t index = 0;
    for (; index < one.size() && index < other.size() && one[index] == other[index]; ++index)
        shared += index > 0 && one[index] == '/';
    return shared;
}

} // namespace

Carriers::Carriers(const BlockDevices &devices, const std::vector<MountEntry> &mounts, FindPoolMember findPoolMember)
    : m_devices(devices),
      m_mounts(mounts),
      m_findPoolMember(std::move(findPoolMember))
{
}

Carrier Carriers::of(const MountEntry &entry) const
{
    const Carrier found = follow(entry, 0);
    return entry.mountPoint == "/" ? followImage(found, 0) : found;
}

Carrier Carriers::follow(const MountEntry &entry, std::size_t depth) const
{
    if (depth > kDeepest)
        return {};
    if (entry.fileSystem == "overlay")
        return followOverlay(entry, depth);
    const BlockDevice *source = sourceOf(entry);
    return source ? Carrier{.carrier = &m_devices.lowestOf(*source), .source = source} : Carrier{};
}

Carrier Carriers::behind(const MountEntry *holder, std::size_t depth) const
{
    Carrier found = holder ? followImage(follow(*holder, depth + 1), depth + 1) : Carrier{};
    found.isBehindFiles = true;
    return found;
}

/// A system started from an image runs from the disk that holds the image.
Carrier Carriers::followImage(Carrier found, std::size_t depth) const
{
    if (!found.carrier || depth > kDeepest)
        return found;
    const BlockDevice *whole = found.carrier->parent.empty() ? found.carrier : m_devices.byName(found.carrier->parent);
    if (!whole || !whole->isLoop())
        return found;
    const Carrier below = behind(holderOf(m_devices.attribute(*whole, "loop/backing_file")), depth);
    return below.carrier ? below : found;
}

Carrier Carriers::followOverlay(const MountEntry &entry, std::size_t depth) const
{
    const std::vector<std::string> layers = overlayLayers(entry);
    for (const std::string &layer : layers) {
        const MountEntry *holder = holderOf(layer);
        if (holder == &entry)
            continue;
        if (const Carrier found = behind(holder, depth); found.carrier)
            return found;
    }
    // A container doesn't see the folders that its root is made of, but files of their neighbourhood are often
    // mounted into it.
    for (const std::string &layer : layers) {
        if (const Carrier found = behind(siblingOf(layer), depth); found.carrier)
            return found;
    }
    return {};
}

const BlockDevice *Carriers::sourceOf(const MountEntry &entry) const
{
    if (entry.device.major != 0)
        return m_devices.byNumber(entry.device);
    if (entry.fileSystem == "zfs")
        return m_findPoolMember(std::string_view(entry.source).substr(0, entry.source.find('/')));
    return m_devices.byNode(
        std::string_view(entry.source).substr(0, entry.source.find(':'))); // bcachefs names all of its own
}

const MountEntry *Carriers::holderOf(std::string_view path) const
{
    const MountEntry *holder = nullptr;
    for (const MountEntry &entry : m_mounts) {
        const bool isCloser = !holder || entry.mountPoint.size() >= holder->mountPoint.size();
        if (isWithin(path, entry.mountPoint) && isCloser)
            holder = &entry;
    }
    return holder;
}

const MountEntry *Carriers::siblingOf(std::string_view hiddenPath) const
{
    constexpr std::size_t kTelling = 2; // "/var/lib/…" is a neighbourhood, "/var/…" is not.
    const MountEntry *sibling = nullptr;
    std::size_t most = kTelling - 1;
    for (const MountEntry &entry : m_mounts) {
        const std::size_t shared = entry.fileSystem == "overlay" ? 0 : sharedFolders(entry.root, hiddenPath);
        if (shared > most) {
            sibling = &entry;
            most = shared;
        }
    }
    return sibling;
}

} // namespace brindle::tools
