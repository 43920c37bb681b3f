#pragma once

#include "machine/Machine.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace brindle::tools {

/// The folders of a simulated machine. The files of a volume lie in ROOT/contents/CONTENT while it isn't mounted, and
/// its mount point is that folder itself, moved to ROOT/Volumes/NAME.
///
/// The machine file tells what is mounted, and the folders follow it. Errors are std::filesystem::filesystem_error.
class MountFolders {
public:
    explicit MountFolders(std::filesystem::path root);

    /// Moves the folders to where \a machine says they are, after a change that was cut short. A folder that is
    /// nowhere is made.
    void settle(const Machine &machine) const;

    /// Moves the folders of what is mounted \a before and not \a after back, before the file is written.
    void detach(const Machine &before, const Machine &after) const;

    /// Moves the folders of what is mounted \a after and was not \a before, and removes those whose volumes are gone,
    /// once the file is written.
    void attach(const Machine &before, const Machine &after) const;

    /// "Volumes/NAME" for a volume \a name, with a number behind it where that is taken in \a machine or on the disk,
    /// and not by one of the mounts \a ending.
    [[nodiscard]] std::string freeMountPoint(const Machine &machine, std::string_view name,
                                             const std::vector<Mount> &ending = {}) const;

    /// Where the files of \a carrier are now.
    [[nodiscard]] std::filesystem::path filesOf(const Machine &machine, const std::string &carrier) const;

    /// The bytes that the files of \a carrier take up in clusters of 4096 bytes, as FAT counts them.
    [[nodiscard]] std::uint64_t usedBytes(const Machine &machine, const std::string &carrier) const;

private:
    [[nodiscard]] std::filesystem::path home(const Machine &machine, const std::string &carrier) const;

    std::filesystem::path m_root;
};

/// Whether the mount is the simulated system's own ("/"), which has no folder and never ends.
[[nodiscard]] bool isSystemMount(const Mount &mount);

} // namespace brindle::tools
