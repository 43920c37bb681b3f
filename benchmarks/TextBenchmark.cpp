// The readers of the tools' text against splitting the same text into lines and lower-casing them, and against
// themselves on ten pieces of the text: whoever is linear takes as long for the whole as for its pieces.

#include "Compare.h"

#include "base/Log.h"
#include "base/Text.h"
#include "detectors/DiskDetector.h"
#include "detectors/EFIPartitionReader.h"
#include "detectors/FilesystemDetector.h"
#include "detectors/ToolText.h"
#include "state/DiskutilListSections.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

using namespace brindle;

namespace {

constexpr std::size_t kMegabyte = 1'000'000;

constexpr std::string_view kList = "/dev/disk0 (internal, physical):\n"
                                   "   #:                       TYPE NAME                    SIZE       IDENTIFIER\n"
                                   "   0:      GUID_partition_scheme                        *1.0 TB     disk0\n"
                                   "   1:                        EFI EFI                     209.7 MB   disk0s1\n"
                                   "   2:                 Apple_APFS Container disk1         600.0 GB   disk0s2\n"
                                   "   3:         Microsoft Reserved                         16.8 MB    disk0s3\n"
                                   "   4:       Microsoft Basic Data WINDOWS                 399.5 GB   disk0s4\n"
                                   "   5:                  Apple_HFS Tools                   551.6 MB   disk0s5\n"
                                   "\n"
                                   "/dev/disk1 (synthesized):\n"
                                   "   #:                       TYPE NAME                    SIZE       IDENTIFIER\n"
                                   "   0:      APFS Container Scheme -                      +600.0 GB   disk1\n"
                                   "                                 Physical Store disk0s2\n"
                                   "   1:                APFS Volume System - Data           310.4 GB   disk1s1\n"
                                   "   2:                APFS Volume Preboot                 1.8 GB     disk1s2\n"
                                   "\n";

constexpr std::string_view kInfo = "   Device Identifier:         disk0\n"
                                   "   Device Node:               /dev/disk0\n"
                                   "   Whole:                     Yes\n"
                                   "   Device / Media Name:       EXAMPLE SSD 1TB\n"
                                   "   Volume Name:               Not applicable (no file system)\n"
                                   "   Mounted:                   Not applicable (no file system)\n"
                                   "   Content (IOContent):       GUID_partition_scheme\n"
                                   "   Media Type:                Generic\n"
                                   "   Protocol:                  PCI-Express\n"
                                   "   SMART Status:              Verified\n"
                                   "   Disk Size:                 1.0 TB (1000204886016 Bytes)\n"
                                   "   Device Block Size:         4096 Bytes\n"
                                   "   Device Location:           Internal\n"
                                   "   Removable Media:           Fixed\n"
                                   "   Solid State:               Yes\n"
                                   "\n";

/// Holds none of the words that tell systems apart, so that every one of them is looked for to the end.
constexpr std::string_view kInfoOfNoSystem = "   Device Identifier:         disk0s2\n"
                                             "   Part of Whole:             disk0\n"
                                             "   Partition Type:            Microsoft Basic Data\n"
                                             "   Content (IOContent):       Microsoft Basic Data\n"
                                             "   File System Personality:   None\n"
                                             "   Device Location:           Internal\n"
                                             "\n";

std::size_t numberOf(const FilesystemFlags &flags)
{
    return static_cast<std::size_t>(flags.hasMacOS) + static_cast<std::size_t>(flags.hasWindows) +
           static_cast<std::size_t>(flags.hasLinux) + static_cast<std::size_t>(flags.hasExFAT);
}

struct Reader {
    std::string name;
    std::string_view text; ///< One piece; the reader gets many of them, one behind the other.
    /// Gives something that depends on all that was read.
    std::function<std::size_t(std::string_view text)> read;
};

/// All that a scan reads about disks and EFI partitions from the list of all disks.
std::size_t readDisks(std::string_view list)
{
    return parseDiskutilListSections(list).size() + DiskDetector::readSectionVolumes(list, "disk0").entries.size() +
           EFIPartitionReader::efiCandidates("disk0", list).size() +
           static_cast<std::size_t>(DiskDetector::isExposedDiskImage(list));
}

/// All that a scan reads about systems from the list of all disks.
std::size_t readSystems(std::string_view list)
{
    return numberOf(FilesystemDetector::analyzeDiskList(list, "disk0")) +
           FilesystemDetector::partitionIdentifiers(list, "disk0").size();
}

std::vector<Reader> readers()
{
    return {
        {"a scan's readers of disks", kList, readDisks},
        {"a scan's readers of systems", kList, readSystems},
        {"parseDiskIdentifiers", kList, [](auto text) { return DiskDetector::parseDiskIdentifiers(text).size(); }},
        {"parseDiskutilListSections", kList, [](auto text) { return parseDiskutilListSections(text).size(); }},
        {"readSectionVolumes", kList,
         [](auto text) { return DiskDetector::readSectionVolumes(text, "disk0").entries.size(); }},
        {"readAPFSVolumeNames", kList,
         [](auto text) { return DiskDetector::readAPFSVolumeNames(text, "disk1").size(); }},
        {"efiCandidates", kList, [](auto text) { return EFIPartitionReader::efiCandidates("disk0", text).size(); }},
        {"isExposedDiskImage", kList,
         [](auto text) { return static_cast<std::size_t>(DiskDetector::isExposedDiskImage(text)); }},
        {"readDiskInfo", kInfo, [](auto text) { return DiskDetector::readDiskInfo(text, "disk0")->name.size(); }},
        {"readPartitionInfo", kInfo,
         [](auto text) { return EFIPartitionReader::readPartitionInfo(text, "disk0")->identifier.size(); }},
        {"analyzeMainDiskInfo", kInfoOfNoSystem,
         [](auto text) { return numberOf(FilesystemDetector::analyzeMainDiskInfo(text, "disk0")); }},
        {"analyzeDiskList", kList,
         [](auto text) { return numberOf(FilesystemDetector::analyzeDiskList(text, "disk0")); }},
        {"analyzePartitionInfo", kInfoOfNoSystem,
         [](auto text) { return numberOf(FilesystemDetector::analyzePartitionInfo(text, "disk0s2")); }},
        {"partitionIdentifiers", kList,
         [](auto text) { return FilesystemDetector::partitionIdentifiers(text, "disk0").size(); }},
        {"isEFIPartitionLine", kList,
         [](auto text) { return static_cast<std::size_t>(FilesystemDetector::isEFIPartitionLine("disk9s1", text)); }},
    };
}

/// Lines without an end, on which a matcher that starts anew at every character would never be done.
std::vector<Reader> readersOfEndlessLines()
{
    return {
        {"a line of digits", "1", [](auto text) { return ToolText::positionOfSize(text).value_or(0); }},
        {"a line of numbers", "1.", [](auto text) { return ToolText::positionOfSize(text).value_or(0); }},
        {"a line of digits and blanks", "1  ", [](auto text) { return ToolText::positionOfSize(text).value_or(0); }},
        {"a line of prefixes", "disk1s", [](auto text) { return ToolText::partitionIn(text, "disk1").has_value(); }},
    };
}

std::string repeated(std::string_view piece, std::size_t length)
{
    std::string text;
    text.reserve(length + piece.size());
    while (text.size() < length)
        text += piece;
    return text;
}

std::size_t splitAndLowerCase(std::string_view text)
{
    std::size_t sum = 0;
    for (const std::string_view line : Lines(text)) {
        const std::string lowered = lowerCased(line);
        sum += lowered.empty() ? 0 : static_cast<unsigned char>(lowered.back());
    }
    return sum;
}

constexpr int kRounds = 21;
volatile std::size_t kept = 0; // what is read has to be read

void compareWithLowering(const Reader &reader)
{
    const std::string text = repeated(reader.text, kMegabyte);
    compare(
        reader.name + ": 1 MB, lowering it", kRounds, 10.0, [&] { kept = reader.read(text); },
        [&] { kept = splitAndLowerCase(text); }, cpuMillisecondsOf);
}

void compareWithPieces(const Reader &reader)
{
    const std::string text = repeated(reader.text, 10 * kMegabyte);
    const auto readPieces = [&] {
        for (std::size_t at = 0; at < text.size(); at += kMegabyte)
            kept = reader.read(std::string_view(text).substr(at, kMegabyte));
    };
    compare(
        reader.name + ": 10 MB, 10 x 1 MB", kRounds, 1.1, [&] { kept = reader.read(text); }, readPieces,
        cpuMillisecondsOf);
}

} // namespace

int main()
{
    Log::setSink({});
    for (const Reader &reader : readers()) {
        compareWithLowering(reader);
        compareWithPieces(reader);
    }
    for (const Reader &reader : readersOfEndlessLines())
        compareWithPieces(reader);
    return verdictStatus();
}
