// The texts of `diskutil` that tell systems apart, read as each of the three kinds.

#include "Require.h"

#include "base/Log.h"
#include "base/Text.h"
#include "detectors/EFIPartitionReader.h"
#include "detectors/FilesystemDetector.h"
#include "detectors/ToolText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

using namespace brindle;

namespace {

using Analyze = FilesystemFlags (*)(std::string_view text, std::string_view identifier);

struct Analysis {
    FilesystemFlags flags;
    std::vector<std::string> lines;

    bool operator==(const Analysis &) const = default;

    [[nodiscard]] bool tellsOf(std::string_view finding) const
    {
        return std::ranges::any_of(lines, [&](std::string_view line) { return contains(line, finding); });
    }
};

Analysis analysisOf(Analyze analyze, std::string_view text)
{
    Analysis analysis;
    const auto before = Log::setSink([&analysis](std::string_view line) { analysis.lines.emplace_back(line); });
    analysis.flags = analyze(text, "disk0");
    Log::setSink(before);
    return analysis;
}

bool implies(bool one, bool other)
{
    return !one || other;
}

void requireSameInAnyCase(Analyze analyze, std::string_view text)
{
    const Analysis analysis = analysisOf(analyze, text);
    require(analysisOf(analyze, upperCased(text)) == analysis, "capitals say the same");
    require(analysisOf(analyze, lowerCased(text)) == analysis, "small letters say the same");
}

/// What is found in the whole disk's texts without a log line is looked up here as plainly as can be.
void analyzeDisk(std::string_view text)
{
    const Analysis info = analysisOf(FilesystemDetector::analyzeMainDiskInfo, text);
    require(info.flags.hasWindows == info.tellsOf("Windows detected in "), "Windows in an info is logged");
    require(info.flags.hasLinux == info.tellsOf("Linux detected in "), "Linux in an info is logged");

    const Analysis list = analysisOf(FilesystemDetector::analyzeDiskList, text);
    const std::string lowered = lowerCased(text);
    require(list.flags.hasMacOS ==
                (contains(lowered, "apfs") || contains(lowered, "apple_hfs") || contains(lowered, "hfs+")),
            "macOS in a section");
    require(list.flags.hasExFAT == contains(lowered, "exfat"), "ExFAT in a section");
    require(list.flags.hasWindows == list.tellsOf("Windows detected in disk list: "), "Windows in a section is logged");
    require(list.flags.hasLinux == list.tellsOf("Linux detected in disk list: "), "Linux in a section is logged");
    require(implies(info.flags.hasExFAT, list.flags.hasExFAT), "an info's value is a part of its text");
}

/// More text never tells of less, but for Windows: the type Basic Data takes back what a word behind it in the list
/// told.
void requireMore(const FilesystemFlags &whole, const FilesystemFlags &part, bool isBasicData)
{
    require(implies(part.hasMacOS, whole.hasMacOS), "macOS stays");
    require(implies(part.hasLinux, whole.hasLinux), "Linux stays");
    require(implies(part.hasExFAT, whole.hasExFAT), "ExFAT stays");
    require(implies(part.hasWindows, whole.hasWindows || isBasicData), "Windows stays, or gives way to Basic Data");
}

void analyzePartition(std::string_view text)
{
    constexpr Analyze kAnalyze = FilesystemDetector::analyzePartitionInfo;
    const Analysis whole = analysisOf(kAnalyze, text);
    require(whole.flags.hasMacOS == whole.tellsOf("   ✅ macOS detected: "), "macOS is logged");
    require(whole.flags.hasWindows == whole.tellsOf("   ✅ Windows detected: "), "Windows is logged");
    require(whole.flags.hasLinux == (whole.tellsOf("   ✅ Linux detected: ") || whole.tellsOf("   ✅ Unix/Linux ")),
            "Linux is logged");
    require(whole.flags.hasExFAT == whole.tellsOf("   ✅ ExFAT detected: "), "ExFAT is logged");

    const std::string lowered = lowerCased(text);
    for (const std::string &line : whole.lines) {
        const std::size_t word = line.rfind(": ");
        require(word == std::string::npos || contains(line, "Microsoft Basic Data") ||
                    contains(lowered, std::string_view(line).substr(word + 2)),
                "a logged word stands in the text");
    }
    const bool isBasicData = contains(lowered, "microsoft basic data");
    requireMore(whole.flags, kAnalyze(text.substr(0, text.size() / 2), "disk0s1"), isBasicData);
    requireMore(whole.flags, kAnalyze(text.substr(text.size() / 2), "disk0s1"), isBasicData);
}

void readPartitions(std::string_view section)
{
    const std::vector<std::string> partitions = FilesystemDetector::partitionIdentifiers(section, "disk0");
    require(std::ranges::adjacent_find(partitions, std::greater_equal()) == partitions.end(),
            "partitions ascend, each once");
    for (const std::string &partition : partitions) {
        require(ToolText::partitionIn(partition, "disk0") == partition, "a partition is one of the disk");
        const std::size_t at = section.find(partition);
        require(at != std::string_view::npos, "a partition stands in the section");
        const std::size_t start = at == 0 ? 0 : section.rfind('\n', at) + 1; // npos + 1 is the text's start
        const std::string_view line = section.substr(start, section.find('\n', at) - start);
        require(FilesystemDetector::isEFIPartitionLine(partition, section) == ToolText::isEFILine(line),
                "the first line that holds a partition decides");
    }
    for (const std::string &candidate : EFIPartitionReader::efiCandidates("disk0", section))
        require(std::ranges::binary_search(partitions, candidate), "an EFI partition is a partition");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    Log::setSink({});

    for (const Analyze analyze : {FilesystemDetector::analyzeMainDiskInfo, FilesystemDetector::analyzeDiskList,
                                  FilesystemDetector::analyzePartitionInfo})
        requireSameInAnyCase(analyze, text);
    analyzeDisk(text);
    analyzePartition(text);
    readPartitions(text);
    return 0;
}
