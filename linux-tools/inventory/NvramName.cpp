#include "inventory/NvramName.h"

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

} // namespace

std::vector<NvramName> nvramNames(std::string_view name)
{
    const std::size_t colon = name.find(':');
    if (colon != std::string_view::npos && isGuid(name.substr(0, colon)))
        return {{name.substr(0, colon), name.substr(colon + 1)}};
    std::vector<NvramName> names;
    for (const std::string_view guid : kPlainNameGuids)
        names.push_back({guid, name});
    return names;
}

} // namespace brindle::tools
