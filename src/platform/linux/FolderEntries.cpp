#include "platform/linux/FolderEntries.h"

#include "base/Error.h"

#include <array>
#include <cerrno>
#include <cstddef>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace brindle {

SplitPath::SplitPath(std::string_view path)
{
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos)
        folder = ".";
    else
        folder = slash == 0 ? "/" : path.substr(0, slash);
    name = slash == std::string_view::npos ? path : path.substr(slash + 1);
}

PathStep::PathStep(std::string &path, std::string_view name) : m_path(path), m_length(path.size())
{
    m_path.append("/").append(name);
}

PathStep::~PathStep()
{
    m_path.resize(m_length);
}

FileDescriptor openFolder(int parent, const std::string &name, int flags, std::string_view path)
{
    FileDescriptor folder(::openat(parent, name.c_str(), flags | O_DIRECTORY | O_CLOEXEC));
    if (!folder)
        throw Error::fromErrno(errno, path);
    return folder;
}

std::vector<FolderEntry> entriesOf(const FileDescriptor &folder, std::string_view path)
{
    constexpr std::size_t kBufferSize = 32768; // what readdir(3) asks the kernel for
    alignas(dirent64) std::array<char, kBufferSize> buffer;
    std::vector<FolderEntry> entries;
    for (;;) {
        const ssize_t size = ::getdents64(folder.value(), buffer.data(), buffer.size());
        if (size < 0)
            throw Error::fromErrno(errno, path);
        if (size == 0)
            return entries;
        for (std::size_t offset = 0; offset < static_cast<std::size_t>(size);) {
            const auto *record = reinterpret_cast<const dirent64 *>(buffer.data() + offset);
            offset += record->d_reclen;
            std::string name = record->d_name;
            if (name == "." || name == "..")
                continue;
            const unsigned char type =
                record->d_type == DT_UNKNOWN ? entryType(folder.value(), name, path) : record->d_type;
            entries.push_back({std::move(name), type});
        }
    }
}

unsigned char entryType(int folder, const std::string &name, std::string_view path)
{
    struct stat status {};
    if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        throw Error::fromErrno(errno, path);
    return IFTODT(status.st_mode);
}

} // namespace brindle
