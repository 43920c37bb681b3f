#include "kernel/acting/MountPlaces.h"

#include "acting/VolumeLabel.h"
#include "text/LineReading.h"
#include "text/Words.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace brindle::tools {
namespace {

constexpr mode_t kFolderMode = 0755;

std::string userName(uid_t uid)
{
    std::array<char, 4096> buffer{};
    passwd entry{};
    passwd *found = nullptr;
    const bool isKnown = ::getpwuid_r(uid, &entry, buffer.data(), buffer.size(), &found) == 0 && found;
    return isKnown ? folderNameOf(found->pw_name) : std::to_string(uid);
}

std::optional<unsigned> numberOf(const char *variable)
{
    const char *const value = std::getenv(variable);
    return value ? leadingNumber<unsigned>(value) : std::nullopt;
}

/// A folder of this program's user that no other may write to; made where there is none.
void requireOwnFolder(const std::string &path)
{
    if (::mkdir(path.c_str(), kFolderMode) != 0 && errno != EEXIST)
        throw ActionError(fmt::format("{}: {}", printable(path), std::strerror(errno)));
    struct stat status {};
    const bool isOwn = ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
                       (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
    if (!isOwn)
        throw ActionError(fmt::format("{} must be a folder that only its owner, user {}, can write to", printable(path),
                                      ::geteuid()));
}

/// Whether an earlier mount left the folder.
bool isLeft(const std::string &path)
{
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
           namesIn(path).empty();
}

/// Whether the place is free; ends the mount there of a device that was pulled out.
bool isFree(const std::string &path, const MountReader &mounts, const BlockDevices &devices, KernelCalls &calls)
{
    const MountEntry *const mounted = mounts.at(path);
    if (!mounted)
        return true;
    const bool isGone = mounted->device.major != 0 && !devices.byNumber(mounted->device);
    return isGone && calls.detach(path) == 0;
}

} // namespace

VolumeUser callingUser()
{
    VolumeUser user{::getuid(), ::getgid(), {}};
    if (user.uid == 0) {
        if (const auto uid = numberOf("SUDO_UID")) {
            user = {*uid, numberOf("SUDO_GID").value_or(*uid), {}};
        } else if (const auto policyKitUid = numberOf("PKEXEC_UID")) {
            user.uid = *policyKitUid;
            const passwd *const entry = ::getpwuid(user.uid);
            user.gid = entry ? entry->pw_gid : user.uid;
        }
    }
    user.name = userName(user.uid);
    return user;
}

MountPlaces::MountPlaces(std::string root) : m_root(std::move(root)) {}

std::string MountPlaces::make(const VolumeUser &user, std::string_view label, const LiveDevice &live,
                              KernelCalls &calls) const
{
    constexpr int kMost = 1000;
    const std::string home = m_root + '/' + user.name;
    requireOwnFolder(m_root);
    requireOwnFolder(home);
    // As they are now: an erase has ended the mount that its volume had.
    const MountReader mounts(live.devices(), fileBytes(live.devices().roots().mountInfo));
    const std::string first = home + '/' + folderNameOf(label);
    std::string place = first;
    for (int number = 1; number <= kMost; ++number) {
        if (isFree(place, mounts, live.devices(), calls)) {
            if (::mkdir(place.c_str(), kFolderMode) == 0 || (errno == EEXIST && isLeft(place)))
                return place;
            if (errno != EEXIST)
                break;
        }
        place = fmt::format("{} {}", first, number);
    }
    throw ActionError(fmt::format("{} can't be made: {}", printable(place), std::strerror(errno)));
}

void MountPlaces::drop(const std::string &mountPoint) const
{
    if (mountPoint.starts_with(m_root + '/'))
        (void)::rmdir(mountPoint.c_str()); // Another mount below it, or files, keep it.
}

} // namespace brindle::tools
