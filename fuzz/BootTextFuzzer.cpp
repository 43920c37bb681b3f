// The texts that tell what the machine booted from, and the hand-written matchers against the regular expressions that
// they stand for.

#include "Require.h"

#include "base/Text.h"
#include "sysinfo/SystemInfoDetector.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <regex>
#include <string>
#include <string_view>

using namespace brindle;

namespace {

/// Behind the first \a separator, without blanks and newlines; empty where there is none.
std::string_view behindFirst(char separator, std::string_view text)
{
    const std::size_t at = text.find(separator);
    return at == std::string_view::npos ? std::string_view() : trimmedWithNewlines(text.substr(at + 1));
}

void readValue(std::string_view text)
{
    const auto value = SystemInfoDetector::parseNvramValue(text);
    const auto saysNothing = [](std::string_view behind) {
        return behind.empty() || behind == "Not found" || behind == "variable not found";
    };
    const std::string_view behindTab = behindFirst('\t', text);
    const std::string_view behindColon = behindFirst(':', text);
    if (!value)
        require(saysNothing(behindTab) && saysNothing(behindColon), "only what says nothing gives no value");
    else if (*value == behindTab)
        require(!saysNothing(behindTab), "a value behind the tab says something");
    else
        require(*value == behindColon && saysNothing(behindTab) && !saysNothing(behindColon), "the tab goes first");
}

void readIdentifier(const std::string &text)
{
    static const std::regex wholeDisk("disk[0-9]+");
    const std::string device = text.starts_with("/dev/") ? text.substr(5) : text;
    std::smatch match;
    const bool isFound = std::regex_search(device, match, wholeDisk, std::regex_constants::match_continuous);
    const std::string identifier = SystemInfoDetector::normalizeDiskIdentifier(text);

    require(identifier == (isFound ? match.str() : device), "the whole disk");
    if (isFound)
        require(SystemInfoDetector::normalizeDiskIdentifier(identifier) == identifier, "a whole disk stays what it is");
}

void readBootPath(const std::string &path)
{
    static const std::regex uuid("[A-F0-9]{8}-[A-F0-9]{4}-[A-F0-9]{4}-[A-F0-9]{4}-[A-F0-9]{12}",
                                 std::regex_constants::icase);
    std::smatch match;
    const bool isFound = std::regex_search(path, match, uuid);
    const auto uuids = SystemInfoDetector::readBootPathUUIDs("boot-path\tPath" + path);

    require(uuids.size() == (isFound ? 1U : 0U), "a UUID where there is one");
    if (isFound)
        require(uuids.front() == match.str(), "the first UUID");
}

void readBootDisk(std::string_view info)
{
    const auto disk = SystemInfoDetector::readBootDisk(info);
    const std::string name = disk.volumeName.value_or("");
    require(trimmed(name) == name && !contains(name, "\n"), "a name is the trimmed rest of its line");
    require(!contains(disk.identifier.value_or(""), "\n"), "an identifier is of one line");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view whole(reinterpret_cast<const char *>(data), size);
    readBootDisk(whole);
    readValue(whole);
    (void)SystemInfoDetector::readOpenCoreVersion(whole);

    constexpr std::size_t kLongest = 80; // the library's matcher recurses
    const std::string text(whole.substr(0, kLongest));
    readIdentifier(text);
    if (!contains(text, "\n")) // the readers only ever see one line
        readBootPath(text);
    return 0;
}
