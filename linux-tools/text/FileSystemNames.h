#pragma once

#include "inventory/Inventory.h"

#include <string>

namespace brindle::tools {

/// How the tools name a file system.
struct FileSystemNames {
    std::string personality; ///< "MS-DOS FAT32"
    std::string bundle;      ///< "msdos"
};

/// The names of a volume's file system. What has no name of its own here keeps libblkid's.
[[nodiscard]] FileSystemNames fileSystemNames(const Volume &volume);

} // namespace brindle::tools
