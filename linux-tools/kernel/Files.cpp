#include "kernel/Files.h"

#include "text/LineReading.h"
#include "text/Words.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <memory>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace brindle::tools {

Descriptor::Descriptor(const std::string &path, int flags, mode_t mode)
    : m_descriptor(::open(path.c_str(), flags | O_CLOEXEC, mode))
{
}

Descriptor::Descriptor(Descriptor &&other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}

Descriptor::~Descriptor()
{
    if (isValid())
        ::close(m_descriptor);
}

std::optional<std::string> readFile(const std::string &path)
{
    const Descriptor file(path, O_RDONLY);
    return file.isValid() ? readOpened(file, std::string::npos) : std::nullopt;
}

std::optional<std::string> readOpened(const Descriptor &file, std::size_t most)
{
    std::string bytes;
    std::array<char, 4096> chunk{};
    for (;;) {
        const ssize_t count = ::read(file.get(), chunk.data(), chunk.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return std::nullopt;
        bytes.append(chunk.data(), static_cast<std::size_t>(count));
        if (count == 0)
            return bytes;
        if (bytes.size() > most) {
            errno = EFBIG;
            return std::nullopt;
        }
    }
}

std::string fileBytes(const std::string &path)
{
    return readFile(path).value_or(std::string());
}

std::optional<std::uint64_t> fileNumber(const std::string &path)
{
    constexpr int kHexadecimal = 16;
    const std::string bytes = fileBytes(path);
    const std::string_view text = trimmed(bytes);
    return text.starts_with("0x") ? leadingNumber(text.substr(2), kHexadecimal) : leadingNumber(text);
}

std::vector<std::string> namesIn(const std::string &directory)
{
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR *)> handle(::opendir(directory.c_str()), ::closedir);
    if (!handle)
        return names;
    while (const dirent *entry = ::readdir(handle.get())) {
        std::string name = static_cast<const char *>(entry->d_name);
        if (name != "." && name != "..")
            names.push_back(std::move(name));
    }
    std::ranges::sort(names);
    return names;
}

std::string linkTarget(const std::string &path)
{
    std::array<char, PATH_MAX> target{};
    const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
    return length > 0 ? std::string(target.data(), static_cast<std::size_t>(length)) : std::string();
}

} // namespace brindle::tools
