// The words by which the texts of `diskutil` tell systems apart.

#include "detectors/FilesystemDetector.h"
#include "detectors/WordSearch.h"

#include "base/Log.h"
#include "base/Text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <span>

namespace brindle {

namespace {

using namespace std::string_view_literals;

using Words = WordSearch::Words;
using FoundWords = std::set<std::string_view>;

// All texts are lower-cased before they are searched. The order of a list is the rule: its first word that the text
// holds is the one that the log names. A word behind a shorter one that it contains is never that.

constexpr std::array kMacOSInPartition{"apfs"sv,
                                       "apple_apfs"sv,
                                       "apfs volume"sv,
                                       "apfs container"sv,
                                       "apple_hfs"sv,
                                       "hfs+"sv,
                                       "hfs plus"sv,
                                       "journaled hfs+"sv,
                                       "hfs+ journaled"sv,
                                       "mac os extended"sv,
                                       "mac os extended (journaled)"sv,
                                       "apple partition map"sv,
                                       "apple_partition_map"sv,
                                       "apple_partition_scheme"sv};

constexpr std::array kFATInPartition{"ms-dos fat32"sv, "ms-dos fat16"sv,   "dos_fat_32"sv,
                                     "dos_fat_16"sv,   "windows_fat_32"sv, "windows_fat_16"sv,
                                     "fat32"sv,        "fat16"sv,          "msdos"sv};

constexpr std::string_view kBasicData = "microsoft basic data";

constexpr std::array kWindowsInPartition{"ntfs"sv,
                                         kBasicData,
                                         "microsoft reserved"sv,
                                         "windows recovery"sv,
                                         "microsoft basic data partition"sv,
                                         "windows re tools"sv,
                                         "winre_dlp"sv};

constexpr std::array kLinuxInPartition{"ext2"sv,
                                       "ext3"sv,
                                       "ext4"sv,
                                       "ext4 journal"sv,
                                       "xfs"sv,
                                       "xfs filesystem"sv,
                                       "btrfs"sv,
                                       "b-tree file system"sv,
                                       "zfs"sv,
                                       "zpool"sv,
                                       "solaris zfs"sv,
                                       "jfs"sv,
                                       "journaled file system"sv,
                                       "ibm jfs"sv,
                                       "reiserfs"sv,
                                       "reiser3"sv,
                                       "reiser4"sv,
                                       "bcachefs"sv,
                                       "f2fs"sv,
                                       "flash-friendly file system"sv,
                                       "nilfs2"sv,
                                       "new implementation of log-structured file system"sv,
                                       "ceph"sv,
                                       "glusterfs"sv,
                                       "lustre"sv,
                                       "ocfs2"sv,
                                       "linux filesystem"sv,
                                       "linux_raid_member"sv,
                                       "linux lvm"sv,
                                       "linux raid"sv,
                                       "linux swap"sv,
                                       "linux luks"sv,
                                       "linux dm-crypt"sv,
                                       "cramfs"sv,
                                       "squashfs"sv,
                                       "ubifs"sv,
                                       "jffs2"sv,
                                       "luks"sv,
                                       "dm-crypt"sv,
                                       "ecryptfs"sv};

constexpr std::array kExFATInPartition{"exfat"sv, "ex-fat"sv, "microsoft exfat"sv, "exfat filesystem"sv,
                                       "extended file allocation table"sv};

constexpr std::array kOtherUnixInPartition{"ufs"sv, "unix file system"sv, "berkeley fast file system"sv, "minix"sv,
                                           "minix filesystem"sv};

constexpr std::array kLinuxInContent{"ext2"sv, "ext3"sv, "ext4"sv,     "xfs"sv,  "btrfs"sv,
                                     "zfs"sv,  "jfs"sv,  "reiserfs"sv, "f2fs"sv, "linux"sv};

constexpr std::array kLinuxInPersonality{"ext"sv, "xfs"sv, "btrfs"sv, "zfs"sv, "jfs"sv, "reiserfs"sv};

constexpr std::array kLinuxInList{"linux filesystem"sv,
                                  "ext2"sv,
                                  "ext3"sv,
                                  "ext4"sv,
                                  "xfs"sv,
                                  "btrfs"sv,
                                  "zfs"sv,
                                  "jfs"sv,
                                  "reiserfs"sv,
                                  "f2fs"sv,
                                  "linux_raid_member"sv,
                                  "linux lvm"sv};

constexpr std::array kFATInList{"dos_fat_32"sv,     "dos_fat_16"sv,   "windows_fat_32"sv,
                                "windows_fat_16"sv, "ms-dos fat32"sv, "ms-dos fat16"sv};

constexpr std::array kMacOSInDisk{"apfs"sv, "apple_hfs"sv, "hfs+"sv};

// "ntfs" is never asked for: it stands before Basic Data among the words of a partition.
constexpr std::array kWindowsBesideBasicData{"windows"sv, "microsoft reserved"sv, "recovery"sv};

std::optional<std::string_view> firstWordIn(std::string_view text, Words words)
{
    const auto word = std::ranges::find_if(words, [&](std::string_view wanted) { return contains(text, wanted); });
    return word == words.end() ? std::nullopt : std::optional(*word);
}

std::optional<std::string_view> firstWordOf(const FoundWords &found, Words words)
{
    const auto word = std::ranges::find_if(words, [&](std::string_view wanted) { return found.contains(wanted); });
    return word == words.end() ? std::nullopt : std::optional(*word);
}

bool containsAny(std::string_view text, Words words)
{
    return firstWordIn(text, words).has_value();
}

/// Whether there is a word; logs it behind \a finding.
bool isFound(std::string_view finding, std::optional<std::string_view> word)
{
    if (word)
        Log::line("   ✅ {}: {}", finding, *word);
    return word.has_value();
}

/// The rest of the line behind the first \a label; absent without the label.
std::optional<std::string_view> valueBehind(std::string_view text, std::string_view label)
{
    const std::size_t at = text.find(label);
    if (at == std::string_view::npos)
        return std::nullopt;
    return *Lines(text.substr(at + label.size())).begin();
}

// --- Windows on a whole disk

struct WindowsRule {
    std::string_view finding;
    bool (*applies)(std::string_view text);
};

/// The drivers that macOS reads NTFS through name themselves; their volumes hold data, not Windows.
bool isNTFS(std::string_view text)
{
    return contains(text, "ntfs") && !contains(text, "tuxera") && !contains(text, "paragon");
}

bool isWindowsSystemPartition(std::string_view text)
{
    return contains(text, "microsoft reserved") || contains(text, "windows recovery");
}

/// Basic Data alone tells nothing: sticks and shared volumes have that type too.
bool isBasicDataOfWindows(std::string_view text)
{
    return contains(text, kBasicData) && (contains(text, "windows") || contains(text, "ntfs"));
}

constexpr WindowsRule kNTFS{"NTFS", isNTFS};
constexpr WindowsRule kSystemPartition{"Windows system partition", isWindowsSystemPartition};
constexpr WindowsRule kBasicDataOfWindows{"Microsoft Basic Data with Windows context", isBasicDataOfWindows};
constexpr WindowsRule kFAT{"FAT32/FAT16", [](std::string_view text) { return containsAny(text, kFATInList); }};

constexpr std::array kWindowsRulesOfContent{kNTFS, kSystemPartition, kBasicDataOfWindows};
constexpr std::array kWindowsRulesOfList{kSystemPartition, kBasicDataOfWindows, kNTFS, kFAT};

/// Whether one of \a rules applies; logs what the first one finds in \a place.
bool findsWindows(std::string_view place, std::string_view text, std::span<const WindowsRule> rules)
{
    const auto rule = std::ranges::find_if(rules, [&](const WindowsRule &each) { return each.applies(text); });
    if (rule == rules.end())
        return false;
    Log::line("   ✅ Windows detected in {}: {}", place, rule->finding);
    return true;
}

// --- the values of a whole disk

FilesystemFlags analyzeContent(std::string_view value)
{
    FilesystemFlags flags;
    flags.hasMacOS = containsAny(value, kMacOSInDisk);
    flags.hasWindows = findsWindows("Content field", value, kWindowsRulesOfContent);
    flags.hasLinux = isFound("Linux detected in Content field", firstWordIn(value, kLinuxInContent));
    flags.hasExFAT = contains(value, "exfat");
    return flags;
}

FilesystemFlags analyzePersonality(std::string_view value)
{
    FilesystemFlags flags;
    if (contains(value, "apfs") || contains(value, "hfs")) {
        flags.hasMacOS = true;
        Log::line("   ✅ macOS detected in Personality field");
    } else if (isNTFS(value)) {
        flags.hasWindows = true;
        Log::line("   ✅ Windows detected in Personality: NTFS");
    } else if (contains(value, "exfat")) {
        flags.hasExFAT = true;
        Log::line("   ✅ ExFAT detected in Personality field");
    }
    flags.hasLinux = isFound("Linux detected in Personality", firstWordIn(value, kLinuxInPersonality));
    return flags;
}

// --- Windows in a partition

/// What a partition of the type Basic Data is, which Windows and ExFAT volumes share.
FilesystemFlags analyzeBasicData(std::string_view text)
{
    FilesystemFlags flags;
    if (contains(text, "exfat") || contains(text, "ex-fat")) {
        flags.hasExFAT = true;
        Log::line("   ✅ ExFAT detected: Microsoft Basic Data (ExFAT)");
    } else if (containsAny(text, kWindowsBesideBasicData)) {
        flags.hasWindows = true;
        Log::line("   ✅ Windows detected: Microsoft Basic Data with Windows context");
    }
    return flags;
}

FilesystemFlags analyzeWindowsPartition(std::string_view text, const FoundWords &found)
{
    auto word = firstWordOf(found, kFATInPartition);
    if (!word)
        word = firstWordOf(found, kWindowsInPartition);
    if (word == kBasicData)
        return analyzeBasicData(text);
    return {.hasWindows = isFound("Windows detected", word)};
}

/// The words of all lists for partitions that \a text holds.
FoundWords partitionWordsIn(std::string_view text)
{
    static const WordSearch search{kMacOSInPartition, kFATInPartition,   kWindowsInPartition,
                                   kLinuxInPartition, kExFATInPartition, kOtherUnixInPartition};
    return search.wordsIn(text);
}

} // namespace

FilesystemFlags FilesystemDetector::analyzeMainDiskInfo(std::string_view info, std::string_view identifier)
{
    const std::string text = lowerCased(info);
    Log::line("🔍 Analyzing main disk info for {}", identifier);
    FilesystemFlags flags;
    if (const auto content = valueBehind(text, "content (iocontent):"))
        flags |= analyzeContent(*content);
    if (const auto personality = valueBehind(text, "file system personality:"))
        flags |= analyzePersonality(*personality);
    return flags;
}

FilesystemFlags FilesystemDetector::analyzeDiskList(std::string_view section, std::string_view identifier)
{
    const std::string text = lowerCased(section);
    Log::line("🔍 Analyzing disk list output for {}", identifier);
    FilesystemFlags flags;
    flags.hasMacOS = containsAny(text, kMacOSInDisk);
    flags.hasWindows = findsWindows("disk list", text, kWindowsRulesOfList);
    flags.hasLinux = isFound("Linux detected in disk list", firstWordIn(text, kLinuxInList));
    flags.hasExFAT = contains(text, "exfat");
    return flags;
}

FilesystemFlags FilesystemDetector::analyzePartitionInfo(std::string_view info, std::string_view identifier)
{
    const std::string text = lowerCased(info);
    Log::line("🔍 Analyzing partition {}", identifier);
    const FoundWords found = partitionWordsIn(text);
    FilesystemFlags flags;
    flags.hasMacOS = isFound("macOS detected", firstWordOf(found, kMacOSInPartition));
    flags |= analyzeWindowsPartition(text, found);
    flags |= {.hasLinux = isFound("Linux detected", firstWordOf(found, kLinuxInPartition))};
    flags |= {.hasExFAT = isFound("ExFAT detected", firstWordOf(found, kExFATInPartition))};
    flags |= {.hasLinux = isFound("Unix/Linux detected", firstWordOf(found, kOtherUnixInPartition))};
    return flags;
}

} // namespace brindle
