#include "state/DiskutilListSections.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST(DiskutilListSections, GiveEachDiskItsLinesWithTheHeader)
{
    const auto sections = parseDiskutilListSections("/dev/disk0 (internal, physical):\n"
                                                    "   0: GUID_partition_scheme\n"
                                                    "\n"
                                                    "/dev/disk10 (synthesized):\n"
                                                    "   0: APFS Container Scheme\n");

    EXPECT_THAT(sections, ElementsAre(Pair("disk0", "/dev/disk0 (internal, physical):\n"
                                                    "   0: GUID_partition_scheme\n"),
                                      Pair("disk10", "/dev/disk10 (synthesized):\n"
                                                     "   0: APFS Container Scheme\n")));
}

TEST(DiskutilListSections, TakeAHeaderWithoutAnythingBehindTheDevice)
{
    EXPECT_THAT(parseDiskutilListSections("/dev/disk0\n row"), ElementsAre(Pair("disk0", "/dev/disk0\n row")));
}

TEST(DiskutilListSections, DropWhatStandsAboveTheFirstHeader)
{
    EXPECT_THAT(parseDiskutilListSections("warning\n\n/dev/disk0\n row"),
                ElementsAre(Pair("disk0", "/dev/disk0\n row")));
    EXPECT_THAT(parseDiskutilListSections("warning\nrow"), IsEmpty());
    EXPECT_THAT(parseDiskutilListSections(""), IsEmpty());
}

TEST(DiskutilListSections, KeepTheLaterOfTwoSectionsOfOneDisk)
{
    EXPECT_THAT(parseDiskutilListSections("/dev/disk0\nold\n/dev/disk1\nrow\n/dev/disk0\nnew"),
                ElementsAre(Pair("disk0", "/dev/disk0\nnew"), Pair("disk1", "/dev/disk1\nrow")));
}

TEST(DiskutilListSections, KeepTheDiskAtAHeaderThatNamesNone)
{
    EXPECT_THAT(parseDiskutilListSections("/dev/disk0\nold\n/dev/diskette\nnew"),
                ElementsAre(Pair("disk0", "/dev/diskette\nnew")));
    EXPECT_THAT(parseDiskutilListSections("/dev/disk disk7\nrow"), IsEmpty());
}

TEST(DiskutilListSections, TakeTheFirstDiskOfTheFirstFieldAlone)
{
    EXPECT_THAT(parseDiskutilListSections("/dev/diskdisk3 disk4\nrow"), ElementsAre(Pair("disk3", testing::_)));
    EXPECT_THAT(parseDiskutilListSections("/dev/disk\tdisk7\nrow"), IsEmpty());
    EXPECT_THAT(parseDiskutilListSections("/dev/disk3s1 x"), ElementsAre(Pair("disk3", testing::_)));
}

TEST(DiskutilListSections, SeeNoHeaderBehindABlank)
{
    EXPECT_THAT(parseDiskutilListSections("/dev/disk0\n /dev/disk1\nrow"),
                ElementsAre(Pair("disk0", "/dev/disk0\n /dev/disk1\nrow")));
}

TEST(DiskutilListSections, JoinLinesThatEndInCarriageReturnsByNewlinesAlone)
{
    EXPECT_THAT(parseDiskutilListSections("/dev/disk0\r\nrow\r\n/dev/disk1\r\n"),
                ElementsAre(Pair("disk0", "/dev/disk0\nrow"), Pair("disk1", "/dev/disk1\n")));
}

} // namespace
} // namespace brindle
