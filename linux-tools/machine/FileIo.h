#pragma once

#include "kernel/Files.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>

namespace brindle::tools {

/// A lock on a folder that one process holds at a time.
class FolderLock {
public:
    /// Waits for the lock, but no longer than \a patience: a MachineFileError then. std::system_error for the rest.
    explicit FolderLock(const std::filesystem::path &folder,
                        std::chrono::milliseconds patience = std::chrono::seconds(10));

private:
    Descriptor m_folder;
};

/// The whole file, of at most 64 MiB. Never waits: a MachineFileError where it is a pipe, a device or a folder;
/// std::system_error for the rest.
[[nodiscard]] std::string readWholeFile(const std::filesystem::path &path);

/// Puts \a text in the place of the file in one step, with the file's permissions: a reader sees the old text or the
/// new one, also after a power cut. A link stays one, and the file that it leads to is replaced. One writer at a time.
/// std::system_error, and the file is as it was.
void replaceFile(const std::filesystem::path &path, std::string_view text);

} // namespace brindle::tools
