#include "support/MaskedPassword.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace brindle {

namespace {

constexpr char kMask = 0x5A;

constexpr std::array kMaskedPassword = [] {
    std::array masked{'T', 'u', '5', '-', 'p', 'e', 'r', 'r', 'y', '-', 'W', 'i', 'n', 'k', 'l', 'e'};
    for (char &character : masked)
        character = static_cast<char>(character ^ kMask);
    return masked;
}();

bool holdsPassword(std::string_view bytes)
{
    const auto isUnmasked = [](char byte, char masked) { return byte == static_cast<char>(masked ^ kMask); };
    return std::ranges::search(bytes, kMaskedPassword, isUnmasked).begin() != bytes.end();
}

} // namespace

Secret maskedPassword()
{
    Secret secret;
    secret.resize(kMaskedPassword.size());
    std::ranges::transform(kMaskedPassword, secret.data(),
                           [](char character) { return static_cast<char>(character ^ kMask); });
    return secret;
}

bool isMaskedPasswordInMemory()
{
    constexpr std::size_t kLargestHeap = 256UL * 1024 * 1024; // larger ones are a sanitizer's own, and nearly all empty
    const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    std::ifstream maps("/proc/self/maps");
    bool isFound = false;
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
        isFound = isFound || (count > 0 && holdsPassword({bytes.data(), static_cast<std::size_t>(count)}));
        std::ranges::fill(bytes, '\0'); // or the copy would be found next
    }
    close(memory);
    return isFound;
}

} // namespace brindle
