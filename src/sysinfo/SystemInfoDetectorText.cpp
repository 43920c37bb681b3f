#include "sysinfo/SystemInfoDetector.h"

#include "base/Text.h"
#include "detectors/ToolText.h"

#include <algorithm>
#include <array>

namespace brindle {

namespace {

bool saysSomething(std::string_view value)
{
    return !value.empty() && value != "Not found" && value != "variable not found";
}

bool isHexDigit(char character)
{
    const char lower = toLower(character);
    return isDigit(character) || (lower >= 'a' && lower <= 'f');
}

/// The first place where groups of 8, 4, 4, 4 and 12 hexadecimal digits stand with dashes between them.
std::optional<std::string_view> uuidIn(std::string_view text)
{
    constexpr std::string_view kForm = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    const auto fits = [](char character, char wanted) {
        return wanted == '-' ? character == '-' : isHexDigit(character);
    };
    const auto found = std::search(text.begin(), text.end(), kForm.begin(), kForm.end(), fits);
    if (found == text.end())
        return std::nullopt;
    return text.substr(static_cast<std::size_t>(found - text.begin()), kForm.size());
}

} // namespace

std::string SystemInfoDetector::normalizeDiskIdentifier(std::string_view device)
{
    constexpr std::string_view kFolder = "/dev/";
    constexpr std::string_view kStem = "disk";
    if (device.starts_with(kFolder))
        device.remove_prefix(kFolder.size());
    if (!device.starts_with(kStem))
        return std::string(device);
    const std::size_t digits = kStem.size();
    const std::size_t end = std::min(device.find_first_not_of("0123456789", digits), device.size());
    return std::string(end > digits ? device.substr(0, end) : device);
}

std::optional<std::string> SystemInfoDetector::parseNvramValue(std::string_view text)
{
    for (const char separator : {'\t', ':'}) {
        const std::size_t at = text.find(separator);
        if (at == std::string_view::npos)
            continue;
        const std::string_view value = trimmedWithNewlines(text.substr(at + 1));
        if (saysSomething(value))
            return std::string(value);
    }
    return std::nullopt;
}

SystemInfoDetector::BootDisk SystemInfoDetector::readBootDisk(std::string_view info)
{
    std::optional<std::string> whole;
    std::optional<std::string> store;
    BootDisk disk;
    for (const std::string_view untrimmed : Lines(info)) {
        const std::string_view line = trimmed(untrimmed);
        if (auto wholeValue = ToolText::valueOf(line, "Part of Whole:")) {
            if (ToolText::isGiven(*wholeValue))
                whole = std::move(wholeValue);
        } else if (auto storeValue = ToolText::valueOf(line, "APFS Physical Store:")) {
            store = std::move(storeValue);
        } else if (auto name = ToolText::valueOf(line, "Volume Name:")) {
            disk.volumeName = std::move(name);
        }
    }
    // The whole disk of a volume in a container is the container; only its store tells the real disk.
    if (const auto &device = store ? store : whole)
        disk.identifier = normalizeDiskIdentifier(*device);
    return disk;
}

std::optional<std::string> SystemInfoDetector::readOpenCoreVersion(std::string_view output)
{
    for (const std::string_view line : Lines(output)) {
        if (findIgnoringCase(line, "opencore") == std::string_view::npos)
            continue;
        if (auto version = parseNvramValue(line))
            return version;
    }
    return std::nullopt;
}

std::vector<std::string> SystemInfoDetector::readBootPathUUIDs(std::string_view output)
{
    std::vector<std::string> uuids;
    for (const std::string_view line : Lines(output)) {
        if (!contains(line, "boot-path"))
            continue;
        const std::string path = parseNvramValue(line).value_or("");
        if (const auto uuid = uuidIn(path))
            uuids.emplace_back(*uuid);
    }
    return uuids;
}

} // namespace brindle
