#include "kernel/EfiVariables.h"

#include "kernel/Files.h"
#include "text/Words.h"

#include <algorithm>
#include <array>

namespace brindle::tools {
namespace {

constexpr std::array<std::string_view, 2> kPlainNameGuids{"7C436110-AB2A-4BBB-A880-FE41995C9F82",
                                                          "4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102"};

/// Whether the text has the shape of a GUID: five groups of hexadecimal digits.
bool isGuid(std::string_view text)
{
    constexpr std::string_view kShape = "hhhhhhhh-hhhh-hhhh-hhhh-hhhhhhhhhhhh";
    const auto fits = [](char character, char wanted) {
        const char upper = static_cast<char>(character >= 'a' && character <= 'f' ? character - 'a' + 'A' : character);
        const bool isHexadecimal = (upper >= '0' && upper <= '9') || (upper >= 'A' && upper <= 'F');
        return wanted == 'h' ? isHexadecimal : character == wanted;
    };
    return std::ranges::equal(text, kShape, fits);
}

std::string lowerCased(std::string text)
{
    std::ranges::transform(text, text.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return text;
}

/// efivarfs names a file "name-guid", the GUID in lower case, and puts 4 bytes of attributes before the value.
std::optional<NvramVariable> readVariable(const std::string &directory, std::string_view guid, std::string_view name)
{
    constexpr std::size_t kAttributes = 4;
    if (name.empty() || name.find('/') != std::string_view::npos)
        return std::nullopt;
    const auto bytes = readFile(directory + '/' + std::string(name) + '-' + lowerCased(std::string(guid)));
    if (!bytes || bytes->size() < kAttributes)
        return std::nullopt;
    return NvramVariable{.guid = upperCased(guid), .name = std::string(name), .value = bytes->substr(kAttributes)};
}

} // namespace

std::optional<NvramVariable> readEfiVariable(const std::string &directory, std::string_view name)
{
    const std::size_t colon = name.find(':');
    if (colon != std::string_view::npos && isGuid(name.substr(0, colon)))
        return readVariable(directory, name.substr(0, colon), name.substr(colon + 1));
    for (const std::string_view guid : kPlainNameGuids) {
        if (auto variable = readVariable(directory, guid, name))
            return variable;
    }
    return std::nullopt;
}

} // namespace brindle::tools
