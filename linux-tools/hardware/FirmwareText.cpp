#include "hardware/FirmwareText.h"

#include "text/Words.h"

#include <algorithm>
#include <array>

namespace brindle::tools {
namespace {

// Seen on boards of many makers and on virtual machines; the one in angle brackets is udev's.
constexpr std::array<std::string_view, 27> kFillers{"TO BE FILLED BY O.E.M.",
                                                    "TO BE FILLED BY O.E.M",
                                                    "DEFAULT STRING",
                                                    "SYSTEM MANUFACTURER",
                                                    "SYSTEM PRODUCT NAME",
                                                    "SYSTEM NAME",
                                                    "SYSTEM VERSION",
                                                    "SYSTEM SERIAL NUMBER",
                                                    "SYSTEM SKU",
                                                    "SERIAL NUMBER",
                                                    "CHASSIS SERIAL NUMBER",
                                                    "O.E.M.",
                                                    "OEM",
                                                    "NOT SPECIFIED",
                                                    "NOT APPLICABLE",
                                                    "NOT AVAILABLE",
                                                    "NO DIMM",
                                                    "UNKNOWN",
                                                    "UNDEFINED",
                                                    "NOT DEFINED",
                                                    "INVALID",
                                                    "EMPTY",
                                                    "NONE",
                                                    "N/A",
                                                    "0123456789",
                                                    "<OUT OF SPEC>",
                                                    "OTHER"};

bool isBlank(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return byte <= 0x20 || byte == 0x7F;
}

std::string_view trimmedOf(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// "0000", "....", "-": the same meaningless character over and over.
bool isPadding(std::string_view text)
{
    constexpr std::string_view kPadding = "0.-_*FfXx ";
    return kPadding.find(text.front()) != std::string_view::npos &&
           text.find_first_not_of(text.front()) == std::string_view::npos;
}

} // namespace

std::string firmwareText(std::string_view raw)
{
    const std::string_view text = trimmedOf(raw);
    if (text.empty() || isPadding(text) || std::ranges::find(kFillers, upperCased(text)) != kFillers.end())
        return {};
    return std::string(text);
}

} // namespace brindle::tools
