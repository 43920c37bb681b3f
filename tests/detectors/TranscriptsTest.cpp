#include "support/Transcripts.h"

#include "base/BlockOn.h"
#include "base/Text.h"
#include "detectors/DiskDetector.h"
#include "detectors/EFIPartitionReader.h"
#include "detectors/FilesystemDetector.h"
#include "detectors/ToolText.h"
#include "state/DiskutilListSections.h"
#include "support/FakeToolRunner.h"
#include "support/Fixtures.h"
#include "support/MemoryUserDefaults.h"

#include <gtest/gtest.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brindle {
namespace {

namespace fs = std::filesystem;

std::string flag(std::string_view name, bool value)
{
    return value ? fmt::format("  {}\n", name) : std::string();
}

std::string_view nameOf(DiskDetector::VolumeRank rank)
{
    switch (rank) {
    case DiskDetector::VolumeRank::APFS:
        return "APFS";
    case DiskDetector::VolumeRank::HFS:
        return "HFS";
    case DiskDetector::VolumeRank::Windows:
        return "Windows";
    }
    return {};
}

std::vector<std::string> namesOf(const FilesystemFlags &flags)
{
    std::vector<std::string> names;
    for (const auto &[isThere, name] : {std::pair(flags.hasMacOS, "macOS"), std::pair(flags.hasWindows, "Windows"),
                                        std::pair(flags.hasLinux, "Linux"), std::pair(flags.hasExFAT, "ExFAT")}) {
        if (isThere)
            names.emplace_back(name);
    }
    return names;
}

/// The partitions of a section that the detector of systems asks the tool about.
std::vector<std::string> partitionsToAskAbout(std::string_view disk, std::string_view section)
{
    std::vector<std::string> partitions = FilesystemDetector::partitionIdentifiers(section, disk);
    std::erase_if(partitions, [&](const std::string &partition) {
        return FilesystemDetector::isEFIPartitionLine(partition, section);
    });
    return partitions;
}

std::string readingOfSection(const std::string &disk, const std::string &section)
{
    const DiskDetector::SectionVolumes volumes = DiskDetector::readSectionVolumes(section, disk);
    std::vector<std::string> entries;
    for (const auto &[name, rank] : volumes.entries)
        entries.push_back(fmt::format("{}: {}", nameOf(rank), name));
    return flag("disk image", DiskDetector::isExposedDiskImage(section)) + field("volumes", entries) +
           field("containers", volumes.containers) + field("unnamed", volumes.unnamedPartitions) +
           field("APFS names", DiskDetector::readAPFSVolumeNames(section, disk)) +
           field("EFI", EFIPartitionReader::efiCandidates(disk, section)) +
           field("not EFI", partitionsToAskAbout(disk, section)) +
           field("systems", namesOf(FilesystemDetector::analyzeDiskList(section, disk)));
}

std::string readingOfList(std::string_view list)
{
    const DiskutilListSections sections = parseDiskutilListSections(list);
    FakeToolRunner tools;
    for (const auto &[disk, section] : sections)
        tools.answer("/usr/sbin/diskutil list " + disk, section);
    const MemoryUserDefaults defaults;
    DiskDetector detector(tools, ToolPaths::system(), defaults);

    std::string reading = fmt::format("{}\n", DiskDetector::parseDiskIdentifiers(list));
    for (const auto &[disk, section] : sections) {
        const auto label = blockOn(detector.volumeLabel(disk, section));
        reading += "\n" + disk + "\n" + field("label", label) + readingOfSection(disk, section);
    }
    return reading;
}

std::string identifierIn(std::string_view info)
{
    for (const std::string_view line : Lines(info)) {
        if (auto identifier = ToolText::valueOf(trimmed(line), "Device Identifier:"))
            return *std::move(identifier);
    }
    return "disk0";
}

std::string readingOfWholeDisk(std::string_view info, const std::string &identifier)
{
    const auto facts = DiskDetector::readDiskInfo(info, identifier);
    if (!facts)
        return "no whole disk\n";
    const bool isDiskImage = DiskDetector::isExposedDiskImage(info);
    const PhysicalDisk typed{.diskType = DiskDetector::diskType(*facts, isDiskImage)};
    return "whole disk\n" + field("name", facts->name) + field("size", facts->size) +
           field("fileSystem", facts->fileSystem) + field("mountPoint", facts->mountPoint) +
           field("mediaUUID", facts->mediaUUID) + field("protocol", facts->protocol) +
           field("location", facts->location) + field("diskType", typed.toSerializable().diskType) +
           field("SMART", std::string(rawValue(facts->smartStatus))) + flag("removable", facts->isRemovable) +
           flag("read-only", !facts->isWritable) + flag("solid state", facts->isSolidState) +
           flag("TRIM", facts->trimSupported);
}

std::string readingOfPartition(std::string_view info, const std::string &identifier)
{
    const auto partition = EFIPartitionReader::readPartitionInfo(info, identifier);
    if (!partition)
        return "no partition\n";
    return "partition " + partition->identifier + "\n" + field("volumeName", partition->volumeName) +
           field("mountPoint", partition->mountPoint) + field("mediaUUID", partition->mediaUUID) +
           flag("mounted", partition->isMounted) + field("given name", DiskDetector::readVolumeName(info));
}

std::string readingOfInfo(std::string_view info)
{
    const std::string identifier = identifierIn(info);
    return readingOfWholeDisk(info, identifier) +
           field("systems", namesOf(FilesystemDetector::analyzeMainDiskInfo(info, identifier))) +
           readingOfPartition(info, identifier) +
           field("systems", namesOf(FilesystemDetector::analyzePartitionInfo(info, identifier)));
}

/// Null for kinds of texts that other readers are for.
TranscriptReader readerOf(std::string_view kind)
{
    if (kind == "list" || kind == "list-one" || kind == "list-physical")
        return readingOfList;
    if (kind == "info-whole" || kind == "info-partition" || kind == "info-root")
        return readingOfInfo;
    return nullptr;
}

class Transcripts : public TranscriptsTest {};

TEST_F(Transcripts, ReadAsReviewed)
{
    expectReadAsReviewed("", readerOf);
}

/// The text of `diskutil info` of a disk or a partition among the texts of its machine, where it is one of them.
std::optional<std::string> infoAmong(const fs::path &machine, const std::string &identifier)
{
    const fs::path file = machine / fmt::format("info-{}.txt", identifier);
    return fs::exists(file) ? std::optional(contentsOf(file)) : std::nullopt;
}

/// The systems of each disk of a list, as all texts of the machine tell them together.
std::string systemsOfMachine(const fs::path &machine, const std::string &list)
{
    std::string reading;
    for (const auto &[disk, section] : parseDiskutilListSections(list)) {
        FakeToolRunner tools;
        for (const std::string &partition : FilesystemDetector::partitionIdentifiers(section, disk)) {
            if (auto info = infoAmong(machine, partition))
                tools.answer("/usr/sbin/diskutil info " + partition, *std::move(info));
        }
        FilesystemDetector detector(tools, ToolPaths::system());
        auto detection = detector.detectFilesystems(disk, infoAmong(machine, disk).value_or(""), section);
        reading += fmt::format("{}: {}\n", disk, namesOf(blockOn(std::move(detection))));
    }
    return reading;
}

TEST_F(Transcripts, TellTheSystemsOfEachMachineAsReviewed)
{
    int compared = 0;
    for (const auto &[path, kind] : index()) {
        SCOPED_TRACE(path);
        const fs::path machine = path.parent_path();
        if (!path.string().starts_with("machines/") || !kind.starts_with("list"))
            continue;
        const std::string reading = systemsOfMachine(folder / machine, contentsOf(folder / path));
        expectGolden(machine / ("systems-of-" + path.filename().string()), reading);
        ++compared;
    }
    EXPECT_GT(compared, 0);
}

} // namespace
} // namespace brindle
