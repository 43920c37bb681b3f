#include "hardware/SystemFiles.h"

#include "hardware/LineReading.h"

#include <algorithm>
#include <cstddef>

#include <fcntl.h>
#include <unistd.h>

namespace brindle::tools {
namespace {

constexpr std::size_t kMostBytes = std::size_t{4} << 20;
constexpr std::size_t kChunkBytes = std::size_t{64} << 10;

} // namespace

std::string fileBytes(const std::filesystem::path &file)
{
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return {};
    std::string bytes;
    ssize_t got = 1;
    while (got > 0 && bytes.size() < kMostBytes) {
        const std::size_t length = bytes.size();
        bytes.resize(length + kChunkBytes);
        got = ::read(descriptor, bytes.data() + length, kChunkBytes);
        bytes.resize(length + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    }
    ::close(descriptor);
    return bytes;
}

std::optional<std::uint64_t> fileNumber(const std::filesystem::path &file)
{
    const std::string bytes = fileBytes(file);
    const std::string_view text = withoutBlanks(bytes);
    return text.starts_with("0x") ? leadingNumber(text.substr(2), 16) : leadingNumber(text);
}

std::vector<std::string> namesIn(const std::filesystem::path &folder)
{
    std::vector<std::string> names;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        names.push_back(entry->path().filename());
    std::ranges::sort(names);
    return names;
}

} // namespace brindle::tools
