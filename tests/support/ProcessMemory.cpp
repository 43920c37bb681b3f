#include "support/ProcessMemory.h"

#include <algorithm>
#include <fstream>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace brindle {

void lookAtMemory(const std::string &process, const std::function<void(std::span<const char>)> &look)
{
    constexpr std::size_t kLargestHeap = 256UL * 1024 * 1024; // larger ones are a sanitizer's own, and nearly all empty
    const std::string folder = "/proc/" + process;
    const int memory = open((folder + "/mem").c_str(), O_RDONLY | O_CLOEXEC);
    std::ifstream maps(folder + "/maps");
    std::vector<char> bytes;
    for (std::string line; std::getline(maps, line);) {
        std::size_t separator = 0;
        const std::size_t begin = std::stoull(line, &separator, 16);
        const std::size_t end = std::stoull(line.substr(separator + 1), nullptr, 16);
        const bool isWritable = line.find(" rw") != std::string::npos;
        if (!isWritable || end - begin > kLargestHeap)
            continue;
        bytes.resize(end - begin);
        const ssize_t count = pread(memory, bytes.data(), bytes.size(), static_cast<off_t>(begin));
        look(std::span(bytes).first(count > 0 ? static_cast<std::size_t>(count) : 0));
        std::ranges::fill(bytes, '\0'); // or the copy would be found next
    }
    close(memory);
}

} // namespace brindle
