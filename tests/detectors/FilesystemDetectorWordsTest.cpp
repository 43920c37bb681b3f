// Every word of every list: what it stands for, and which of two words the log names.

#include "detectors/FilesystemDetector.h"

#include "base/Text.h"
#include "detectors/FilesystemDetectorFixture.h"

#include <gmock/gmock.h>

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Word {
    std::string text;
    std::string earlierWord = {}; ///< The earlier word of its list that the word contains; empty without one.

    [[nodiscard]] const std::string &logged() const { return earlierWord.empty() ? text : earlierWord; }
};

struct WordList {
    const char *name;
    TextReader reader;
    const char *label; ///< Stands before the words in the text.
    const char *finding;
    FilesystemFlags flags;
    std::vector<Word> words;
};

const std::vector<WordList> &wordLists()
{
    static const std::vector<WordList> lists{
        WordList{"MacOSInPartition",
                 kPartitionInfo,
                 "",
                 "macOS detected",
                 kMacOS,
                 {{"apfs"},
                  {"apple_apfs", "apfs"},
                  {"apfs volume", "apfs"},
                  {"apfs container", "apfs"},
                  {"apple_hfs"},
                  {"hfs+"},
                  {"hfs plus"},
                  {"journaled hfs+", "hfs+"},
                  {"hfs+ journaled", "hfs+"},
                  {"mac os extended"},
                  {"mac os extended (journaled)", "mac os extended"},
                  {"apple partition map"},
                  {"apple_partition_map"},
                  {"apple_partition_scheme"}}},
        WordList{"FATInPartition",
                 kPartitionInfo,
                 "",
                 "Windows detected",
                 kWindows,
                 {{"ms-dos fat32"},
                  {"ms-dos fat16"},
                  {"dos_fat_32"},
                  {"dos_fat_16"},
                  {"windows_fat_32"},
                  {"windows_fat_16"},
                  {"fat32"},
                  {"fat16"},
                  {"msdos"}}},
        WordList{"WindowsInPartition",
                 kPartitionInfo,
                 "",
                 "Windows detected",
                 kWindows,
                 {{"ntfs"}, {"microsoft reserved"}, {"windows recovery"}, {"windows re tools"}, {"winre_dlp"}}},
        WordList{"LinuxInPartition",
                 kPartitionInfo,
                 "",
                 "Linux detected",
                 kLinux,
                 {{"ext2"},
                  {"ext3"},
                  {"ext4"},
                  {"ext4 journal", "ext4"},
                  {"xfs"},
                  {"xfs filesystem", "xfs"},
                  {"btrfs"},
                  {"b-tree file system"},
                  {"zfs"},
                  {"zpool"},
                  {"solaris zfs", "zfs"},
                  {"jfs"},
                  {"journaled file system"},
                  {"ibm jfs", "jfs"},
                  {"reiserfs"},
                  {"reiser3"},
                  {"reiser4"},
                  {"bcachefs"},
                  {"f2fs"},
                  {"flash-friendly file system"},
                  {"nilfs2"},
                  {"new implementation of log-structured file system"},
                  {"ceph"},
                  {"glusterfs"},
                  {"lustre"},
                  {"ocfs2"},
                  {"linux filesystem"},
                  {"linux_raid_member"},
                  {"linux lvm"},
                  {"linux raid"},
                  {"linux swap"},
                  {"linux luks"},
                  {"linux dm-crypt"},
                  {"cramfs"},
                  {"squashfs"},
                  {"ubifs"},
                  {"jffs2"},
                  {"luks"},
                  {"dm-crypt"},
                  {"ecryptfs"}}},
        WordList{"ExFATInPartition",
                 kPartitionInfo,
                 "",
                 "ExFAT detected",
                 kExFAT,
                 {{"exfat"},
                  {"ex-fat"},
                  {"microsoft exfat", "exfat"},
                  {"exfat filesystem", "exfat"},
                  {"extended file allocation table"}}},
        WordList{
            "OtherUnixInPartition",
            kPartitionInfo,
            "",
            "Unix/Linux detected",
            kLinux,
            {{"ufs"}, {"unix file system"}, {"berkeley fast file system"}, {"minix"}, {"minix filesystem", "minix"}}},
        WordList{
            "LinuxInContent",
            kMainDiskInfo,
            "Content (IOContent):  ",
            "Linux detected in Content field",
            kLinux,
            {{"ext2"}, {"ext3"}, {"ext4"}, {"xfs"}, {"btrfs"}, {"zfs"}, {"jfs"}, {"reiserfs"}, {"f2fs"}, {"linux"}}},
        WordList{"LinuxInPersonality",
                 kMainDiskInfo,
                 "File System Personality:  ",
                 "Linux detected in Personality",
                 kLinux,
                 {{"ext"}, {"xfs"}, {"btrfs"}, {"zfs"}, {"jfs"}, {"reiserfs"}}},
        WordList{"LinuxInList",
                 kDiskList,
                 "",
                 "Linux detected in disk list",
                 kLinux,
                 {{"linux filesystem"},
                  {"ext2"},
                  {"ext3"},
                  {"ext4"},
                  {"xfs"},
                  {"btrfs"},
                  {"zfs"},
                  {"jfs"},
                  {"reiserfs"},
                  {"f2fs"},
                  {"linux_raid_member"},
                  {"linux lvm"}}}};
    return lists;
}

struct WordCase {
    const WordList &list;
    const Word &word;

    [[nodiscard]] std::string name() const
    {
        std::string name = fmt::format("{}_{}", list.name, word.text);
        std::ranges::replace(name, '+', 'P');
        std::ranges::replace(name, '-', 'H');
        std::erase_if(name, [](unsigned char character) { return std::isalnum(character) == 0 && character != '_'; });
        return name;
    }

    [[nodiscard]] std::string line(const Word &logged) const
    {
        return fmt::format("   ✅ {}: {}", list.finding, logged.logged());
    }
};

/// The words, less those that contain an earlier one if \a firstWordsOnly.
std::vector<WordCase> wordCases(bool firstWordsOnly)
{
    std::vector<WordCase> cases;
    for (const WordList &list : wordLists()) {
        for (const Word &word : list.words) {
            if (word.earlierWord.empty() || !firstWordsOnly)
                cases.push_back({list, word});
        }
    }
    return cases;
}

class WordOfAList : public testing::TestWithParam<WordCase> {};

TEST_P(WordOfAList, SetsItsFlagInAnyCaseAndIsLogged)
{
    const auto &[list, word] = GetParam();

    for (const std::string &text : {word.text, upperCased(word.text), fmt::format("a{}z", word.text)}) {
        const Analysis analysis = analysisOf(list.reader, list.label + text);

        EXPECT_EQ(analysis.flags, list.flags) << text;
        EXPECT_THAT(analysis.findings, ElementsAre(GetParam().line(word))) << text;
    }
}

INSTANTIATE_TEST_SUITE_P(FilesystemDetector, WordOfAList, testing::ValuesIn(wordCases(false)),
                         [](const auto &row) { return row.param.name(); });

TEST(FilesystemDetectorWords, AreLoggedInTheOrderOfTheListNotOfTheText)
{
    const std::vector<WordCase> cases = wordCases(true);
    for (std::size_t later = 1; later < cases.size(); ++later) {
        const WordCase &earlier = cases[later - 1];
        if (&earlier.list != &cases[later].list)
            continue;

        const std::string text = fmt::format("{}{} {}", earlier.list.label, cases[later].word.text, earlier.word.text);

        EXPECT_THAT(analysisOf(earlier.list.reader, text).findings, ElementsAre(earlier.line(earlier.word))) << text;
    }
}

TEST(FilesystemDetectorWords, OfFATInASectionAreOneFinding)
{
    for (const char *word :
         {"dos_fat_32", "dos_fat_16", "windows_fat_32", "windows_fat_16", "ms-dos fat32", "ms-dos fat16"}) {
        for (const std::string &text : {std::string(word), upperCased(word)}) {
            const Analysis analysis = analysisOf(kDiskList, text);

            EXPECT_EQ(analysis.flags, kWindows) << text;
            EXPECT_THAT(analysis.findings, ElementsAre("   ✅ Windows detected in disk list: FAT32/FAT16")) << text;
        }
    }
}

TEST(FilesystemDetectorWords, OfBasicDataAloneTellNothingOfAPartition)
{
    for (const char *word : {"Microsoft Basic Data", "Microsoft Basic Data Partition"}) {
        const Analysis analysis = analysisOf(kPartitionInfo, word);

        EXPECT_EQ(analysis.flags, kNoSystem) << word;
        EXPECT_THAT(analysis.findings, IsEmpty()) << word;
    }
}

} // namespace
} // namespace brindle
