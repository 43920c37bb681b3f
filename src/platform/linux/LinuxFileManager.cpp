#include "platform/linux/LinuxFileManager.h"

#include "platform/linux/FolderEntries.h"
#include "platform/linux/ModuleFunction.h"
#include "platform/linux/TreeComparerModule.h"
#include "platform/linux/TreeCopy.h"
#include "platform/linux/TreeRemoval.h"

#include "base/Error.h"
#include "base/OnWorker.h"

#include <fmt/format.h>

#include <cerrno>
#include <stop_token>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace brindle {

namespace {

// STATX_MNT_ID_UNIQUE of the kernel's interface since 6.8: an identifier that no later mount gets. An older kernel
// gives one that it gives again, which the device and the folder's number are the safeguard against.
constexpr unsigned kUniqueMountId = 0x4000;

std::string volumeThatHolds(const std::string &folder)
{
    struct statx status {};
    if (::statx(AT_FDCWD, folder.c_str(), 0, STATX_INO | STATX_MNT_ID | kUniqueMountId, &status) != 0)
        return {};
    return fmt::format("{}:{} {} {}", status.stx_dev_major, status.stx_dev_minor, status.stx_mnt_id, status.stx_ino);
}

std::vector<std::string> namesIn(const std::string &path)
{
    const FileDescriptor folder = openFolder(AT_FDCWD, path, O_RDONLY, path);
    std::vector<std::string> names;
    for (FolderEntry &entry : entriesOf(folder, path))
        names.push_back(std::move(entry.name));
    return names;
}

} // namespace

LinuxFileManager::LinuxFileManager(std::filesystem::path comparer) : m_comparer(std::move(comparer)) {}

QCoro::Task<bool> LinuxFileManager::fileExists(std::string path)
{
    return onWorker([path = std::move(path)] {
        struct stat status {};
        return ::stat(path.c_str(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
    });
}

QCoro::Task<std::string> LinuxFileManager::volumeAt(std::string mountPoint)
{
    return onWorker([mountPoint = std::move(mountPoint)] { return volumeThatHolds(mountPoint); });
}

QCoro::Task<std::vector<std::string>> LinuxFileManager::contentsOfDirectory(std::string path)
{
    return onWorker([path = std::move(path)] { return namesIn(path); });
}

QCoro::Task<> LinuxFileManager::copyItem(std::string from, std::string to, CancellationToken token)
{
    std::stop_source stop;
    if (token.isCancelled())
        stop.request_stop();
    const auto registration = token.onCancel([stop]() mutable { stop.request_stop(); });
    auto copy = onWorker([from, to, stop] { TreeCopy(from, to, stop.get_token()).run(); });
    co_await copy;
}

QCoro::Task<TreeComparison> LinuxFileManager::compareItems(std::string first, std::string second)
{
    void *const function = moduleFunction(m_comparer, "brindleCompareTrees", "comparing folders");
    if (!function)
        throw Error("LinuxFileManager", 1, "Folders can't be compared: a module of the program can't be loaded.");
    const auto compare = reinterpret_cast<decltype(&brindleCompareTrees)>(function);
    auto comparison = onWorker([compare, first, second] {
        TreeComparison result;
        compare(first, second, result);
        return result;
    });
    co_return co_await comparison;
}

QCoro::Task<> LinuxFileManager::removeItem(std::string path)
{
    return onWorker([path = std::move(path)] { removeTree(path); });
}

} // namespace brindle
