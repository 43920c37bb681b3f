// The hand-written matchers against the regular expressions that they stand for, on short texts of one line.

#include "Require.h"

#include "detectors/ToolText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <regex>
#include <string>
#include <string_view>

using namespace brindle;

namespace {

std::optional<std::string> firstMatch(const std::string &text, const std::regex &expression)
{
    std::smatch match;
    if (!std::regex_search(text, match, expression))
        return std::nullopt;
    return match[match.size() - 1];
}

std::optional<std::size_t> positionOfMatch(const std::string &text, const std::regex &expression)
{
    std::smatch match;
    if (!std::regex_search(text, match, expression))
        return std::nullopt;
    return static_cast<std::size_t>(match.position());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr std::size_t kLongest = 80; // the library's matcher recurses
    const std::string text(reinterpret_cast<const char *>(data), std::min(size, kLongest));
    static const std::regex sizeColumn(R"(\d+\.?\d*\s+(GB|MB|TB|KB))");
    static const std::regex container("Container (disk[0-9]+)");
    static const std::regex wholeDisk("disk[0-9]+");
    static const std::regex partition(R"(disk1s\d+)");

    // In a text of several lines the expressions may run over a line's end; the readers only ever see one line.
    if (text.find('\n') != std::string::npos)
        return 0;
    require(ToolText::positionOfSize(text) == positionOfMatch(text, sizeColumn), "the size column");
    require(ToolText::containerIn(text) == firstMatch(text, container), "the container");
    require(ToolText::numbered(text, "disk") == firstMatch(text, wholeDisk), "the whole disk");
    require(ToolText::partitionIn(text, "disk1") == firstMatch(text, partition), "the partition");
    return 0;
}
