#pragma once

#include "machine/MachineFile.h"

#include <string>
#include <vector>

namespace brindle::tools {

/// A disk of a simulated machine, plugged in or lying on its shelf.
struct PluggedDisk {
    bool isIn = false;
    std::string identifier; ///< On the shelf, the one that it had last.
    std::string mediaName;
};

/// All disks: those that are in, then the shelf's.
[[nodiscard]] std::vector<PluggedDisk> pluggedDisks(const MachineFile &file);

/// Plugs a disk in, which is named by its last identifier or its media name. It gets a number that no disk had before,
/// and nothing of it is mounted. Gives its new identifier; throws ActionError.
std::string plugIn(const MachineFile &file, const std::string &name);

/// Pulls a disk out as it is, mounted or in use. Throws ActionError, for the disk that the system runs from too.
void plugOut(const MachineFile &file, const std::string &name);

/// Copies a machine, ROOT with all files, folders and links that it holds, to \a to, which must be missing or empty and
/// lie outside. Links to its tools lead to the same programs from the new place, links within it to the copy. Tools
/// that change the machine wait meanwhile. Throws MachineFileError, and nothing is left of the copy.
void copyMachine(const std::filesystem::path &from, const std::filesystem::path &to);

} // namespace brindle::tools
