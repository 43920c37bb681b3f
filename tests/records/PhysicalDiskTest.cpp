#include "records/PhysicalDisk.h"
#include "support/SampleDisks.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace brindle {
namespace {

using DiskType = PhysicalDisk::DiskType;

std::size_t hashOf(const PhysicalDisk &disk)
{
    return std::hash<PhysicalDisk>{}(disk);
}

// What equality and hash make of a change in one field.
enum class Notice { Unequal, UnequalAndHashed, None };

struct ChangeCase {
    const char *name;
    void (*change)(PhysicalDisk &disk);
    Notice notice;
};

class ChangeOfADisk : public testing::TestWithParam<ChangeCase> {};

TEST_P(ChangeOfADisk, IsSeenByEqualityOnlyWhereTheFieldCounts)
{
    const PhysicalDisk disk = completeDisk();
    PhysicalDisk changed = disk;

    GetParam().change(changed);

    EXPECT_EQ(disk == changed, GetParam().notice == Notice::None);
}

TEST_P(ChangeOfADisk, IsSeenByTheHashOnlyWhereTheFieldCounts)
{
    const PhysicalDisk disk = completeDisk();
    PhysicalDisk changed = disk;

    GetParam().change(changed);

    EXPECT_EQ(hashOf(disk) != hashOf(changed), GetParam().notice == Notice::UnequalAndHashed);
}

INSTANTIATE_TEST_SUITE_P(
    PhysicalDisk, ChangeOfADisk,
    testing::Values(
        ChangeCase{"Identifier", [](PhysicalDisk &disk) { disk.identifier = "disk5"; }, Notice::UnequalAndHashed},
        ChangeCase{"Name", [](PhysicalDisk &disk) { disk.name = "Other"; }, Notice::Unequal},
        ChangeCase{"Size", [](PhysicalDisk &disk) { disk.size = "1 GB"; }, Notice::Unequal},
        ChangeCase{"NewlyMountedPartition", [](PhysicalDisk &disk) { disk.efiPartitions[1].isMounted = true; },
                   Notice::UnequalAndHashed},
        ChangeCase{"LostPartition", [](PhysicalDisk &disk) { disk.efiPartitions.pop_back(); },
                   Notice::UnequalAndHashed},
        ChangeCase{"OrderOfPartitions",
                   [](PhysicalDisk &disk) { std::swap(disk.efiPartitions[0], disk.efiPartitions[1]); },
                   Notice::UnequalAndHashed},
        ChangeCase{"NameOfAPartition", [](PhysicalDisk &disk) { disk.efiPartitions[0].volumeName = "NEW"; },
                   Notice::None},
        ChangeCase{"OpenCore", [](PhysicalDisk &disk) { disk.hasOpenCore = false; }, Notice::UnequalAndHashed},
        ChangeCase{"Clover", [](PhysicalDisk &disk) { disk.hasClover = false; }, Notice::UnequalAndHashed},
        ChangeCase{"MacOS", [](PhysicalDisk &disk) { disk.hasMacOS = false; }, Notice::Unequal},
        ChangeCase{"Windows", [](PhysicalDisk &disk) { disk.hasWindows = false; }, Notice::Unequal},
        ChangeCase{"Linux", [](PhysicalDisk &disk) { disk.hasLinux = false; }, Notice::Unequal},
        ChangeCase{"ExFAT", [](PhysicalDisk &disk) { disk.hasExFAT = false; }, Notice::Unequal},
        ChangeCase{"BootDisk", [](PhysicalDisk &disk) { disk.isBootDisk = false; }, Notice::UnequalAndHashed},
        ChangeCase{"TotalSpace", [](PhysicalDisk &disk) { disk.totalSpaceBytes = 1; }, Notice::UnequalAndHashed},
        ChangeCase{"LostTotalSpace", [](PhysicalDisk &disk) { disk.totalSpaceBytes.reset(); },
                   Notice::UnequalAndHashed},
        ChangeCase{"UsedSpace", [](PhysicalDisk &disk) { disk.usedSpaceBytes = 1; }, Notice::UnequalAndHashed},
        ChangeCase{"LostUsedSpace", [](PhysicalDisk &disk) { disk.usedSpaceBytes.reset(); }, Notice::UnequalAndHashed},
        ChangeCase{"SMARTStatus", [](PhysicalDisk &disk) { disk.smartStatus = SMARTStatus::verified; },
                   Notice::UnequalAndHashed},
        ChangeCase{"MediaUUID", [](PhysicalDisk &disk) { disk.mediaUUID.reset(); }, Notice::None},
        ChangeCase{"FileSystem", [](PhysicalDisk &disk) { disk.fileSystem = "None"; }, Notice::None},
        ChangeCase{"MountPoint", [](PhysicalDisk &disk) { disk.mountPoint.reset(); }, Notice::None},
        ChangeCase{"VolumeName", [](PhysicalDisk &disk) { disk.volumeName = "New"; }, Notice::None},
        ChangeCase{"Removable", [](PhysicalDisk &disk) { disk.isRemovable = false; }, Notice::None},
        ChangeCase{"Writable", [](PhysicalDisk &disk) { disk.isWritable = true; }, Notice::None},
        ChangeCase{"DiskType", [](PhysicalDisk &disk) { disk.diskType = DiskType::diskImage; }, Notice::None},
        ChangeCase{"DiskImage", [](PhysicalDisk &disk) { disk.isDiskImage = false; }, Notice::None},
        ChangeCase{"SolidState", [](PhysicalDisk &disk) { disk.isSolidState = false; }, Notice::None},
        ChangeCase{"Trim", [](PhysicalDisk &disk) { disk.trimSupported = false; }, Notice::None},
        ChangeCase{"Protocol", [](PhysicalDisk &disk) { disk.busProtocol = "PCI"; }, Notice::None}),
    [](const auto &row) { return row.param.name; });

TEST(PhysicalDisk, ComparesEqualAfterANewVolumeNameAndUnequalAfterAPartitionIsMounted)
{
    const PhysicalDisk disk = completeDisk();
    PhysicalDisk renamed = disk;
    PhysicalDisk mounted = disk;

    renamed.volumeName = "Other";
    mounted.efiPartitions[1].isMounted = true;

    EXPECT_EQ(disk, renamed);
    EXPECT_NE(disk, mounted);
}

TEST(PhysicalDisk, HashesAnAbsentSpaceAndAZeroApart)
{
    PhysicalDisk absent;
    PhysicalDisk zero;

    zero.totalSpaceBytes = 0;

    EXPECT_NE(hashOf(absent), hashOf(zero));
}

TEST(PhysicalDisk, ShowsTheBootSymbolEvenAsAnExternalDiskWithOpenCore)
{
    const PhysicalDisk disk{.diskType = DiskType::physicalExternal, .isBootDisk = true, .hasOpenCore = true};

    EXPECT_EQ(disk.diskIcon(), "applelogo");
}

TEST(PhysicalDisk, ShowsTheOutlineWhenAllFindingsAreFalse)
{
    EXPECT_EQ(PhysicalDisk{.diskType = DiskType::physicalInternal}.diskIcon(), "internaldrive");
}

TEST(PhysicalDisk, ShowsTheFilledFormForExFATAlone)
{
    const PhysicalDisk disk{.diskType = DiskType::physicalInternal, .hasExFAT = true};

    EXPECT_EQ(disk.diskIcon(), "internaldrive.fill");
}

struct IconCase {
    const char *name;
    DiskType type;
    std::string outline;
};

class IconOfADisk : public testing::TestWithParam<IconCase> {};

TEST_P(IconOfADisk, FollowsTheTypeAndIsFilledByAnyFinding)
{
    PhysicalDisk disk{.diskType = GetParam().type};
    EXPECT_EQ(disk.diskIcon(), GetParam().outline);

    for (bool PhysicalDisk::*finding : {&PhysicalDisk::hasOpenCore, &PhysicalDisk::hasClover, &PhysicalDisk::hasMacOS,
                                        &PhysicalDisk::hasLinux, &PhysicalDisk::hasWindows, &PhysicalDisk::hasExFAT}) {
        disk.*finding = true;
        EXPECT_EQ(disk.diskIcon(), GetParam().outline + ".fill");
        disk.*finding = false;
    }
}

INSTANTIATE_TEST_SUITE_P(PhysicalDisk, IconOfADisk,
                         testing::Values(IconCase{"Internal", DiskType::physicalInternal, "internaldrive"},
                                         IconCase{"External", DiskType::physicalExternal, "externaldrive"},
                                         IconCase{"Removable", DiskType::removable,
                                                  "externaldrive.connected.to.line.below"},
                                         IconCase{"Image", DiskType::diskImage, "opticaldisc"}),
                         [](const auto &row) { return row.param.name; });

struct TypeCase {
    const char *name;
    DiskType type;
};

class TypeOfADisk : public testing::TestWithParam<TypeCase> {};

TEST_P(TypeOfADisk, IsPersistedAsTheNameOfItsCase)
{
    const SerializablePhysicalDisk serialized = PhysicalDisk{.diskType = GetParam().type}.toSerializable();

    EXPECT_EQ(serialized.diskType, GetParam().name);
    EXPECT_EQ(PhysicalDisk::fromSerialized(serialized).diskType, GetParam().type);
}

INSTANTIATE_TEST_SUITE_P(PhysicalDisk, TypeOfADisk,
                         testing::Values(TypeCase{"physicalInternal", DiskType::physicalInternal},
                                         TypeCase{"physicalExternal", DiskType::physicalExternal},
                                         TypeCase{"removable", DiskType::removable},
                                         TypeCase{"diskImage", DiskType::diskImage}),
                         [](const auto &row) { return row.param.name; });

TEST(PhysicalDisk, LosesNoFieldOnTheWayThereAndBack)
{
    const PhysicalDisk disk = completeDisk();

    const SerializablePhysicalDisk serialized = disk.toSerializable();
    const PhysicalDisk restored = PhysicalDisk::fromSerialized(serialized);

    EXPECT_EQ(restored, disk);
    EXPECT_EQ(restored.toSerializable(), serialized);
    EXPECT_EQ(serialized.identifier, "disk4");
    EXPECT_EQ(serialized.mediaUUID, disk.mediaUUID);
    EXPECT_EQ(serialized.name, "Example SSD");
    EXPECT_EQ(serialized.size, "500.1 GB");
    EXPECT_EQ(serialized.fileSystem, "GUID_partition_scheme");
    EXPECT_EQ(serialized.mountPoint, "/Volumes/Whole");
    EXPECT_EQ(serialized.volumeName, "System • Work");
    EXPECT_TRUE(serialized.isRemovable);
    EXPECT_FALSE(serialized.isWritable);
    EXPECT_EQ(serialized.efiPartitions.size(), 2U);
    EXPECT_EQ(serialized.efiPartitions.front(), disk.efiPartitions.front().toSerializable());
    EXPECT_TRUE(serialized.isBootDisk);
    EXPECT_TRUE(serialized.isDiskImage);
    EXPECT_EQ(serialized.totalSpaceBytes, 500'000'000'000);
    EXPECT_EQ(serialized.usedSpaceBytes, 123'456'789'012);
    EXPECT_EQ(serialized.smartStatus, "Failing");
    EXPECT_EQ(serialized.isSolidState, true);
    EXPECT_EQ(serialized.trimSupported, true);
    EXPECT_EQ(serialized.busProtocol, "USB");
}

TEST(PhysicalDisk, PersistsEachFindingUnderItsOwnName)
{
    EXPECT_TRUE(PhysicalDisk{.hasMacOS = true}.toSerializable().hasMacOS);
    EXPECT_TRUE(PhysicalDisk{.hasOpenCore = true}.toSerializable().hasOpenCore);
    EXPECT_TRUE(PhysicalDisk{.hasClover = true}.toSerializable().hasClover);
    EXPECT_TRUE(PhysicalDisk{.hasWindows = true}.toSerializable().hasWindows);
    EXPECT_TRUE(PhysicalDisk{.hasLinux = true}.toSerializable().hasLinux);
    EXPECT_TRUE(PhysicalDisk{.hasExFAT = true}.toSerializable().hasExFAT);

    EXPECT_TRUE(PhysicalDisk::fromSerialized({.hasMacOS = true}).hasMacOS);
    EXPECT_TRUE(PhysicalDisk::fromSerialized({.hasOpenCore = true}).hasOpenCore);
    EXPECT_TRUE(PhysicalDisk::fromSerialized({.hasClover = true}).hasClover);
    EXPECT_TRUE(PhysicalDisk::fromSerialized({.hasWindows = true}).hasWindows);
    EXPECT_TRUE(PhysicalDisk::fromSerialized({.hasLinux = true}).hasLinux);
    EXPECT_TRUE(PhysicalDisk::fromSerialized({.hasExFAT = true}).hasExFAT);
}

TEST(PhysicalDisk, PersistsTheLastFourFieldsEvenAtTheirStartValues)
{
    const SerializablePhysicalDisk serialized = PhysicalDisk{}.toSerializable();

    EXPECT_EQ(serialized.smartStatus, "Unknown");
    EXPECT_EQ(serialized.isSolidState, false);
    EXPECT_EQ(serialized.trimSupported, false);
    EXPECT_EQ(serialized.busProtocol, "");
}

TEST(PhysicalDisk, OfAnUnexpectedTypeLoadsAsInternalAndStaysRemovableAsStored)
{
    SerializablePhysicalDisk serialized = completeDisk().toSerializable();
    serialized.diskType = "floppy";

    const PhysicalDisk disk = PhysicalDisk::fromSerialized(serialized);

    EXPECT_EQ(disk.diskType, DiskType::physicalInternal);
    EXPECT_TRUE(disk.isRemovable);
}

TEST(PhysicalDisk, OfAnUnexpectedHealthLoadsAsUnknown)
{
    const PhysicalDisk disk = PhysicalDisk::fromSerialized({.smartStatus = "About to fail"});

    EXPECT_EQ(disk.smartStatus, SMARTStatus::unknown);
}

} // namespace
} // namespace brindle
