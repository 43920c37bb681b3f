#include "acting/VolumeLabel.h"

#include "text/Utf8.h"
#include "text/Words.h"

#include <algorithm>
#include <array>
#include <utility>

namespace brindle::tools {
namespace {

using namespace std::string_view_literals;
using enum NameRule::Unit;

constexpr std::array kRules{
    std::pair{"vfat"sv, NameRule{11, bytes, R"("*+,./:;<=>?[\]|)"sv, true, true}},
    std::pair{"exfat"sv, NameRule{11, utf16, R"("*/:<>?\|)"sv, false, false}},
    std::pair{"ntfs"sv, NameRule{32, utf16, R"("*/:<>?\|)"sv, false, false}},
    std::pair{"hfsplus"sv, NameRule{255, utf16, ":"sv, false, false}},
    std::pair{"ext2"sv, NameRule{16, bytes, "/"sv, false, false}},
    std::pair{"ext3"sv, NameRule{16, bytes, "/"sv, false, false}},
    std::pair{"ext4"sv, NameRule{16, bytes, "/"sv, false, false}},
};

constexpr NameRule kOtherRule{255, bytes, "/:"sv, false, false};

bool isAllowed(const CodePoint &codePoint, const NameRule &rule)
{
    if (isInvisible(codePoint.value))
        return false;
    if (codePoint.value > 0x7F)
        return !rule.isAscii;
    return rule.forbidden.find(static_cast<char>(codePoint.value)) == std::string_view::npos;
}

std::size_t unitsOf(const CodePoint &codePoint, const NameRule &rule)
{
    if (rule.unit == bytes)
        return codePoint.length;
    return codePoint.value > 0xFFFF ? 2 : 1;
}

void dropBlanksAtEnd(std::string &name)
{
    name.erase(name.find_last_not_of(' ') + 1);
}

} // namespace

std::string fitted(std::string_view name, const NameRule &rule)
{
    std::string label;
    name.remove_prefix(std::min(name.find_first_not_of(' '), name.size()));
    for (std::size_t used = 0; !name.empty();) {
        const auto read = firstCodePoint(name);
        const bool isKept = read && isAllowed(*read, rule);
        const CodePoint written = isKept ? *read : CodePoint{U'_', 1};
        used += unitsOf(written, rule);
        if (used > rule.limit)
            break;
        label += isKept ? name.substr(0, read->length) : "_"sv;
        name.remove_prefix(read ? read->length : 1);
    }
    dropBlanksAtEnd(label);
    return rule.isUpperCase ? upperCased(label) : label;
}

std::string fittedLabel(std::string_view name, std::string_view fileSystem)
{
    const auto rule = std::ranges::find(kRules, fileSystem, &decltype(kRules)::value_type::first);
    return fitted(name, rule == kRules.end() ? kOtherRule : rule->second);
}

std::string folderNameOf(std::string_view label)
{
    constexpr std::size_t kLongest = 240; // room for a number within the 255 bytes of a file name
    const std::string name = fitted(label, NameRule{.limit = kLongest, .forbidden = "/"});
    if (name.empty())
        return "Untitled";
    return name == "." || name == ".." ? std::string(name.size(), '_') : name;
}

} // namespace brindle::tools
