#include "platform/linux/TreeRemoval.h"

#include "platform/linux/FolderEntries.h"

#include "base/Error.h"

#include <cerrno>

#include <dirent.h>
#include <fcntl.h>

namespace brindle {

namespace {

void removeEntry(int parent, const FolderEntry &entry, std::string &path)
{
    const bool isFolder = entry.type == DT_DIR;
    if (isFolder) {
        const FileDescriptor folder = openFolder(parent, entry.name, O_RDONLY | O_NOFOLLOW, path);
        for (const FolderEntry &child : entriesOf(folder, path)) {
            const PathStep step(path, child.name);
            removeEntry(folder.value(), child, path);
        }
    }
    if (::unlinkat(parent, entry.name.c_str(), isFolder ? AT_REMOVEDIR : 0) != 0)
        throw Error::fromErrno(errno, path);
}

} // namespace

void removeTree(const std::string &path)
{
    const SplitPath split(path);
    const FileDescriptor parent = openFolder(AT_FDCWD, split.folder, O_PATH, path);
    std::string shownPath = path;
    removeEntry(parent.value(), {split.name, entryType(parent.value(), split.name, path)}, shownPath);
}

} // namespace brindle
