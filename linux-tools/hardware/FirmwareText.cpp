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
    const std::string_view text = trimmed(raw);
    if (text.empty() || isPadding(text) || std::ranges::find(kFillers, upperCased(text)) != kFillers.end())
        return {};
    return std::string(text);
}

} // namespace brindle::tools
