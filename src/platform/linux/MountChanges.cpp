#include "platform/linux/MountChanges.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <compare>
#include <cstddef>
#include <optional>
#include <set>

namespace brindle {

namespace {

using namespace std::string_view_literals;

/// Cuts the first field, up to \a separator, off \a text.
std::string_view takeField(std::string_view &text, char separator)
{
    const std::string_view field = text.substr(0, text.find(separator));
    text.remove_prefix(std::min(text.size(), field.size() + 1));
    return field;
}

constexpr bool isOctal(char character)
{
    return character >= '0' && character <= '7';
}

/// The kernel writes blank, tab, newline and backslash as a backslash and three octal digits.
std::string withoutEscapes(std::string_view field)
{
    constexpr std::size_t kDigits = 3;
    std::string text;
    for (std::size_t index = 0; index < field.size(); ++index) {
        const std::string_view digits = field[index] == '\\' ? field.substr(index + 1, kDigits) : std::string_view();
        if (digits.size() == kDigits && std::ranges::all_of(digits, isOctal)) {
            text += static_cast<char>((digits[0] - '0') * 64 + (digits[1] - '0') * 8 + (digits[2] - '0'));
            index += kDigits;
        } else {
            text += field[index];
        }
    }
    return text;
}

/// A line of the table; refers to its text.
struct MountLine {
    std::string_view mount;  ///< A number that no other mount has at the same time, and that a remount keeps.
    std::string_view device; ///< "8:1"; "0:…" where the file system has no block device of its own.
    std::string_view root;   ///< Which folder of the file system is mounted; "/" for all of it.
    std::string_view mountPoint;
    std::string_view fileSystem;
    std::string_view source;
};

MountLine parseLine(std::string_view line)
{
    MountLine entry;
    entry.mount = takeField(line, ' ');
    takeField(line, ' '); // The number of the mount above it.
    entry.device = takeField(line, ' ');
    entry.root = takeField(line, ' ');
    entry.mountPoint = takeField(line, ' ');
    takeField(line, ' '); // The options of the mount.
    while (!line.empty() && takeField(line, ' ') != "-") {
        // Any number of optional fields stands before the dash.
    }
    entry.fileSystem = takeField(line, ' ');
    entry.source = takeField(line, ' ');
    return entry;
}

// Memory, floppy drives and flash without a controller: none of them is ever listed as a disk.
constexpr std::array kUnlistedDevices{"/dev/ram"sv, "/dev/zram"sv, "/dev/fd"sv, "/dev/mtdblock"sv};

// They lie on several devices and so have no block device's number. Their subvolumes are mounted as if each were a
// folder.
constexpr std::array kOnManyDevices{"btrfs"sv, "bcachefs"sv, "zfs"sv};

bool isVolume(const MountLine &entry)
{
    const bool isOnManyDevices = std::ranges::find(kOnManyDevices, entry.fileSystem) != kOnManyDevices.end();
    const bool isUnlisted = std::ranges::any_of(
        kUnlistedDevices, [&](std::string_view device) { return entry.source.starts_with(device); });
    const bool isOnBlockDevice =
        isOnManyDevices || (entry.device.find(':') != std::string_view::npos && !entry.device.starts_with("0:"));
    return isOnBlockDevice && !isUnlisted && !entry.mountPoint.empty() && (isOnManyDevices || entry.root == "/");
}

/// What tells one mount from another.
struct MountKey {
    std::string_view mount;
    std::string_view device;
    std::string_view mountPoint;

    auto operator<=>(const MountKey &) const = default;
};

std::vector<MountKey> volumesIn(std::string_view table)
{
    std::vector<MountKey> volumes;
    for (const std::string_view line : Lines(table)) {
        const MountLine entry = parseLine(line);
        if (isVolume(entry))
            volumes.push_back({entry.mount, entry.device, entry.mountPoint});
    }
    return volumes;
}

/// The mount points of \a volumes that are not among \a others.
std::vector<std::string> missingFrom(const std::vector<MountKey> &others, const std::vector<MountKey> &volumes)
{
    const std::set<MountKey> known(others.begin(), others.end());
    std::vector<std::string> mountPoints;
    for (const MountKey &volume : volumes) {
        if (!known.contains(volume))
            mountPoints.push_back(withoutEscapes(volume.mountPoint));
    }
    return mountPoints;
}

} // namespace

MountChanges compareMountTables(std::string_view before, std::string_view after)
{
    const std::vector<MountKey> oldVolumes = volumesIn(before);
    const std::vector<MountKey> newVolumes = volumesIn(after);
    return {.mounted = missingFrom(oldVolumes, newVolumes), .unmounted = missingFrom(newVolumes, oldVolumes)};
}

} // namespace brindle
