#pragma once

#include "base/Error.h"
#include "platform/UserDefaults.h"
#include "platform/linux/FileDescriptor.h"

#include <sys/stat.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

namespace brindle {

/// What stands in the place of the property list can't be read as one, and waiting won't change that.
class DamagedFile : public Error {
public:
    DamagedFile(const std::filesystem::path &path, std::string_view reason);
};

/// The property list on the disk that several processes share.
///
/// Readers need no lock: the file is only ever replaced as a whole, so that whoever opens it finds a whole one, however
/// a writer ended. Writers read, change and replace it under a lock, so that none undoes what another has done. All
/// functions that can fail throw Error, domain "POSIXError".
class DefaultsFile {
public:
    explicit DefaultsFile(std::filesystem::path path);

    [[nodiscard]] const std::filesystem::path &path() const { return m_path; }

    /// The folder in which the file is replaced: another than that of path() where path() is a symbolic link.
    [[nodiscard]] std::filesystem::path folder() const;

    /// Whether the file is another than the one last read or written, or was never read. One system call.
    [[nodiscard]] bool hasChanged() const;

    /// All values of the file; none where there is no file. Throws DamagedFile for one that is truncated, of another
    /// format or kind, or not to be read by this user.
    [[nodiscard]] PropertyValue::Dictionary read();

    /// Whether read() gave all that the file holds, or a copy of it is kept: replacing it loses nothing.
    [[nodiscard]] bool isComplete() const { return m_isComplete; }

    /// Waits until no other process holds the lock, and holds it for the life of the result. Makes the folder.
    [[nodiscard]] FileDescriptor lock() const;

    /// Puts \a bytes in the place of the file, readable by its user alone. Where it throws, the old file stands.
    void replace(std::string_view bytes);

    /// Renames what stands at path(), whatever it is, to "<path>.damaged-<UTC time>" and returns that name.
    std::filesystem::path setAside();

    /// Copies the file that was read to such a name and returns that.
    std::filesystem::path keepCopy();

private:
    /// What tells one state of the file from another: the error of looking at it, device, inode, size, time of the last
    /// change of the content and of the inode.
    using Stamp = std::tuple<int, dev_t, ino_t, off_t, time_t, long, time_t, long>;

    [[nodiscard]] Stamp look() const;
    [[nodiscard]] std::filesystem::path nameAside() const;

    std::filesystem::path m_path;
    std::optional<Stamp> m_seen;
    FileDescriptor m_open; ///< Of the file last seen: while it is open, no other file can have its inode number.
    bool m_isComplete = true;
};

} // namespace brindle
