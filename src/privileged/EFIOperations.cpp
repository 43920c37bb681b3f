#include "privileged/EFIOperations.h"

#include "base/DefaultsKeys.h"
#include "base/FileExists.h"
#include "base/Text.h"
#include "detectors/ToolText.h"
#include "records/Preferences.h"

#include <optional>
#include <string_view>
#include <utility>

namespace brindle {

namespace {

/// Looks at the whole text: a partition with "Not applicable" in any of its fields counts as unmounted.
bool tellsOfAMount(std::string_view info)
{
    return contains(info, ToolText::kMountPointLabel) && !contains(info, "Not applicable") &&
           !contains(info, "could not be found");
}

/// The value of the first mount point's line; nullopt where there is no such line or it says nothing.
std::optional<std::string> mountPointIn(std::string_view info)
{
    for (const std::string_view line : Lines(info)) {
        if (auto value = ToolText::valueOf(trimmed(line), ToolText::kMountPointLabel))
            return ToolText::isGiven(*value) ? std::move(value) : std::nullopt;
    }
    return std::nullopt;
}

} // namespace

EFIOperations::EFIOperations(ToolRunner &tools, const ToolPaths &paths, KeychainHelper &keychain,
                             MountNotifier &notifier, Workspace &workspace, const UserDefaults &defaults)
    : EFIPartitionReader(tools, paths),
      m_diskutilPath(paths.diskutil()),
      m_keychain(keychain),
      m_notifier(notifier),
      m_workspace(workspace),
      m_defaults(defaults)
{
}

QCoro::Task<> EFIOperations::mount(std::string identifier, std::string diskName)
{
    try {
        auto mounting = mountUnlessMounted(identifier);
        co_await mounting;
    } catch (...) {
        m_notifier.mountResult(diskName, false, identifier);
        throw;
    }
    m_notifier.mountResult(diskName, true, identifier);
    if (!isOn(m_defaults, DefaultsKeys::kAutoOpenFinderOnMount))
        co_return;
    try {
        auto opening = openMountPoint(identifier);
        co_await opening;
    } catch (const Error &) { // the mount has worked all the same
    }
}

QCoro::Task<> EFIOperations::unmount(std::string identifier, std::string diskName)
{
    try {
        auto unmounting = unmountUnlessUnmounted(identifier);
        co_await unmounting;
    } catch (...) {
        m_notifier.unmountResult(diskName, false);
        throw;
    }
    m_notifier.unmountResult(diskName, true);
}

QCoro::Task<> EFIOperations::rename(std::string identifier, std::string newName)
{
    auto renaming = runPrivileged({"rename", std::move(identifier), std::move(newName)});
    co_await renaming;
}

QCoro::Task<> EFIOperations::openMountPoint(std::string identifier)
{
    auto asking = info(std::move(identifier));
    const std::string text = co_await asking;
    const std::optional<std::string> mountPoint = mountPointIn(text);
    if (!mountPoint)
        co_return;
    auto looking = fileExists(*mountPoint);
    if (co_await looking)
        m_workspace.openFile(*mountPoint);
}

QCoro::Task<std::string> EFIOperations::info(std::string identifier) const
{
    return diskutil().run({"info", std::move(identifier)}, {});
}

QCoro::Task<std::string> EFIOperations::runPrivileged(std::vector<std::string> arguments)
{
    return m_keychain.runPrivileged(m_diskutilPath, std::move(arguments));
}

QCoro::Task<> EFIOperations::mountUnlessMounted(std::string identifier)
{
    auto asking = info(identifier);
    const std::string text = co_await asking;
    if (tellsOfAMount(text))
        co_return;
    auto mounting = runPrivileged({"mount", identifier});
    co_await mounting;
}

QCoro::Task<> EFIOperations::unmountUnlessUnmounted(std::string identifier)
{
    auto asking = info(identifier);
    const std::string text = co_await asking;
    if (!tellsOfAMount(text))
        co_return;
    try {
        auto unmounting = runPrivileged({"unmount", identifier});
        co_await unmounting;
        co_return;
    } catch (const Error &) { // a busy volume; nothing can be awaited within a handler
    }
    auto forcing = runPrivileged({"unmount", "force", identifier});
    co_await forcing;
}

} // namespace brindle
