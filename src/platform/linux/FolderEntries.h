#pragma once

#include "platform/linux/FileDescriptor.h"

#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// One entry of a folder.
struct FolderEntry {
    std::string name;
    unsigned char type = 0; ///< DT_DIR, DT_REG, DT_LNK …, as readdir(3) names them; never DT_UNKNOWN.
};

/// A path as the folder that an entry lies in and the entry's name. Slashes at the end belong to neither.
struct SplitPath {
    explicit SplitPath(std::string_view path);

    std::string folder; ///< "." and "/" where the path names none.
    std::string name;
};

/// Makes a path longer by one name while it lives, so that an error can say where it happened.
class PathStep {
public:
    PathStep(std::string &path, std::string_view name);
    ~PathStep();
    PathStep(const PathStep &) = delete;
    PathStep &operator=(const PathStep &) = delete;

private:
    std::string &m_path;
    std::size_t m_length;
};

// All throw what the system says; \a path stands in their errors alone.

/// Opens the folder \a name of the folder \a parent; \a flags as of open(2), O_DIRECTORY and O_CLOEXEC are added.
[[nodiscard]] FileDescriptor openFolder(int parent, const std::string &name, int flags, std::string_view path);

/// The entries of an open folder in the order of the file system, without "." and "..".
[[nodiscard]] std::vector<FolderEntry> entriesOf(const FileDescriptor &folder, std::string_view path);

/// The type of an entry, of a link the link's own.
[[nodiscard]] unsigned char entryType(int folder, const std::string &name, std::string_view path);

} // namespace brindle
