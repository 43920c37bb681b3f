#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace brindle::tools {

/// A file descriptor that is closed with its owner.
class Descriptor {
public:
    /// Opens with O_CLOEXEC; invalid when that fails, with the reason in errno.
    Descriptor(const std::string &path, int flags, mode_t mode = 0);
    Descriptor(Descriptor &&other) noexcept;
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    Descriptor &operator=(Descriptor &&) = delete;
    ~Descriptor();

    [[nodiscard]] bool isValid() const { return m_descriptor >= 0; }
    [[nodiscard]] int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

/// The bytes of a file; `nullopt` when it can't be read. For the files of sysfs and procfs, which have no size.
[[nodiscard]] std::optional<std::string> readFile(const std::string &path);

/// What is left to read of an open file; `nullopt`, with the reason in errno, when that fails or is more than \a most
/// bytes.
[[nodiscard]] std::optional<std::string> readOpened(const Descriptor &file, std::size_t most);

/// The same as readFile(); empty when it can't be read.
[[nodiscard]] std::string fileBytes(const std::string &path);

/// The number that a file begins with, in decimal or behind "0x"; `nullopt` for any other file.
[[nodiscard]] std::optional<std::uint64_t> fileNumber(const std::string &path);

/// The names in a directory, sorted, without "." and ".."; empty when it can't be read.
[[nodiscard]] std::vector<std::string> namesIn(const std::string &directory);

/// Where a symbolic link leads, as it is written; empty when it isn't one.
[[nodiscard]] std::string linkTarget(const std::string &path);

} // namespace brindle::tools
