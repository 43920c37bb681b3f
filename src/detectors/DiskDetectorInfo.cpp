// What the text of `diskutil info` alone tells of a whole disk.

#include "detectors/DiskDetector.h"
#include "detectors/ToolText.h"

#include "base/Text.h"

#include <array>
#include <utility>

namespace brindle {

namespace {

using DiskFacts = DiskDetector::DiskFacts;

struct Reading {
    DiskFacts facts;
    bool isWhole = false;
};

/// A trimmed line and its value behind the label.
struct LabelledLine {
    std::string_view text;
    std::string value;

    /// Any other word counts as no, also one that means yes, such as "Removable".
    [[nodiscard]] bool saysYes() const { return contains(text, "Yes"); }
};

struct LabelRule {
    std::string_view label;
    void (*apply)(Reading &reading, LabelledLine line);
};

SMARTStatus smartStatusOf(std::string_view value)
{
    const std::string word = lowerCased(value);
    if (word == "verified")
        return SMARTStatus::verified;
    if (word == "failing")
        return SMARTStatus::failing;
    return word.empty() ? SMARTStatus::unknown : SMARTStatus::notSupported;
}

void setName(Reading &reading, LabelledLine line)
{
    if (!line.value.empty())
        reading.facts.name = std::move(line.value);
}

void setSize(Reading &reading, LabelledLine line)
{
    const std::string_view value = line.value;
    reading.facts.size = trimmed(value.substr(0, value.find('(')));
}

void fillFileSystem(Reading &reading, LabelledLine line)
{
    if (!line.value.empty() && reading.facts.fileSystem == DiskFacts{}.fileSystem)
        reading.facts.fileSystem = std::move(line.value);
}

void setMountPoint(Reading &reading, LabelledLine line)
{
    if (ToolText::isGiven(line.value))
        reading.facts.mountPoint = std::move(line.value);
}

void fillMediaUUID(Reading &reading, LabelledLine line)
{
    if (!reading.facts.mediaUUID)
        reading.facts.mediaUUID = std::move(line.value);
}

// The first label that a line begins with takes it. Releases differ in which of them they print, and in what order.
constexpr auto kLabelRules = std::to_array<LabelRule>({
    {"SMART Status:",
     [](Reading &reading, LabelledLine line) { reading.facts.smartStatus = smartStatusOf(line.value); }},
    {"Whole:", [](Reading &reading, LabelledLine line) { reading.isWhole = line.saysYes(); }},
    {"Device / Media Name:", setName},
    {"Total Size:", setSize},
    {"Disk Size:", setSize},
    {"Content (IOContent):",
     [](Reading &reading, LabelledLine line) { reading.facts.fileSystem = std::move(line.value); }},
    {"File System Personality:", fillFileSystem},
    {"Type (Bundle):", fillFileSystem},
    {ToolText::kMountPointLabel, setMountPoint},
    {"Removable Media:", [](Reading &reading, LabelledLine line) { reading.facts.isRemovable = line.saysYes(); }},
    {"Read-Only Media:", [](Reading &reading, LabelledLine line) { reading.facts.isWritable = !line.saysYes(); }},
    {"Device Location:", [](Reading &reading, LabelledLine line) { reading.facts.location = std::move(line.value); }},
    {"Protocol:", [](Reading &reading, LabelledLine line) { reading.facts.protocol = std::move(line.value); }},
    {"Solid State:", [](Reading &reading, LabelledLine line) { reading.facts.isSolidState = line.saysYes(); }},
    {"TRIM Support:", [](Reading &reading, LabelledLine line) { reading.facts.trimSupported = line.saysYes(); }},
    {"Disk / Partition UUID:",
     [](Reading &reading, LabelledLine line) { reading.facts.mediaUUID = std::move(line.value); }},
    {"Volume UUID:", fillMediaUUID},
});

void readLine(Reading &reading, std::string_view line)
{
    for (const LabelRule &rule : kLabelRules) {
        if (auto value = ToolText::valueOf(line, rule.label)) {
            rule.apply(reading, {line, *std::move(value)});
            return;
        }
    }
}

} // namespace

std::optional<DiskFacts> DiskDetector::readDiskInfo(std::string_view info, std::string_view identifier)
{
    Reading reading;
    reading.facts.name = upperCased(identifier);
    for (const std::string_view line : Lines(info))
        readLine(reading, trimmed(line));
    if (!reading.isWhole)
        return std::nullopt;
    return std::move(reading.facts);
}

PhysicalDisk::DiskType DiskDetector::diskType(const DiskFacts &facts, bool isDiskImage)
{
    const auto protocolHas = [&](std::string_view word) {
        return findIgnoringCase(facts.protocol, word) != std::string_view::npos;
    };
    if (isDiskImage)
        return PhysicalDisk::DiskType::diskImage;
    if (facts.isRemovable)
        return PhysicalDisk::DiskType::removable;
    if (protocolHas("usb") || protocolHas("thunderbolt") ||
        findIgnoringCase(facts.location, "external") != std::string_view::npos)
        return PhysicalDisk::DiskType::physicalExternal;
    return PhysicalDisk::DiskType::physicalInternal;
}

} // namespace brindle
