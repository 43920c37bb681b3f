#include "support/MaskedPassword.h"

#include "support/ProcessMemory.h"

#include <algorithm>
#include <array>

namespace brindle {

namespace {

constexpr char kMask = 0x5A;

constexpr std::array kMaskedPassword = [] {
    std::array masked{'T', 'u', '5', '-', 'p', 'e', 'r', 'r', 'y', '-', 'W', 'i', 'n', 'k', 'l', 'e'};
    for (char &character : masked)
        character = static_cast<char>(character ^ kMask);
    return masked;
}();

bool holdsPassword(std::span<const char> bytes)
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
    bool isFound = false;
    lookAtMemory("self", [&isFound](std::span<const char> region) { isFound = isFound || holdsPassword(region); });
    return isFound;
}

} // namespace brindle
