#include "shell/IconState.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace brindle {
namespace {

namespace fs = std::filesystem;

struct Systems {
    bool macOS = false;
    bool windows = false;
    bool linuxes = false;
    bool exfat = false;
};

class IconStateTest : public testing::Test {
protected:
    /// A mounted EFI partition that holds \a paths: a folder where one ends with "/", else a file.
    EFIPartition mounted(const std::vector<std::string> &paths)
    {
        const fs::path mountPoint = root() / std::to_string(++m_partitions);
        fs::create_directories(mountPoint);
        for (const std::string &path : paths) {
            fs::create_directories((mountPoint / path).parent_path());
            if (!path.ends_with('/'))
                std::ofstream(mountPoint / path) << "x";
        }
        return {.identifier = "disk1s1", .isMounted = true, .mountPoint = mountPoint.string()};
    }

    static PhysicalDisk disk(std::vector<EFIPartition> partitions, Systems systems = {})
    {
        PhysicalDisk disk;
        disk.efiPartitions = std::move(partitions);
        disk.hasMacOS = systems.macOS;
        disk.hasWindows = systems.windows;
        disk.hasLinux = systems.linuxes;
        disk.hasExFAT = systems.exfat;
        return disk;
    }

    [[nodiscard]] fs::path root() const { return m_folder.path().toStdString(); }

private:
    QTemporaryDir m_folder;
    int m_partitions = 0;
};

// --- one partition

struct FilesCase {
    const char *name;
    std::vector<std::string> paths;
    IconState state;
};

class FilesOnAPartition : public IconStateTest, public testing::WithParamInterface<FilesCase> {};

TEST_P(FilesOnAPartition, DecideTheStateOfADiskWithMacOS)
{
    const IconState state = iconState(true, {disk({mounted(GetParam().paths)}, {.macOS = true})});

    EXPECT_EQ(rawValue(state), rawValue(GetParam().state));
}

INSTANTIATE_TEST_SUITE_P(
    IconState, FilesOnAPartition,
    testing::Values(
        FilesCase{"OpenCore", {"EFI/OC/OpenCore.efi"}, IconState::openCoreMounted},
        FilesCase{"OnlyTheConfigurationOfOpenCore", {"EFI/OC/config.plist"}, IconState::openCoreMounted},
        FilesCase{"AnEmptyFolderOfOpenCore", {"EFI/OC/"}, IconState::openCoreMounted},
        FilesCase{"OpenCoreInBoot", {"EFI/BOOT/OpenCore.efi"}, IconState::openCoreMounted},
        FilesCase{"OpenCoreBesideClover", {"EFI/OC/", "EFI/CLOVER/"}, IconState::openCoreMounted},
        FilesCase{"OpenCoreBesideWindows", {"EFI/OC/", "EFI/Microsoft/"}, IconState::openCoreMounted},
        FilesCase{"Clover", {"EFI/CLOVER/CLOVERX64.efi"}, IconState::cloverMounted},
        FilesCase{"OnlyTheConfigurationOfClover", {"EFI/CLOVER/config.plist"}, IconState::cloverMounted},
        FilesCase{"AnEmptyFolderOfClover", {"EFI/CLOVER/"}, IconState::cloverMounted},
        FilesCase{"CloverBesideMicrosoft", {"EFI/CLOVER/", "EFI/Microsoft/"}, IconState::macOSEFIMounted},
        FilesCase{"CloverBesideWindowsLoader", {"EFI/CLOVER/", "EFI/Boot/bootmgfw.efi"}, IconState::macOSEFIMounted},
        FilesCase{"CloverBesideAnotherLoader", {"EFI/CLOVER/", "EFI/Boot/bootx64.efi"}, IconState::cloverMounted},
        FilesCase{"BootLoadersOutsideOfEFI", {"OC/OpenCore.efi", "CLOVER/"}, IconState::macOSEFIMounted},
        FilesCase{"ALoaderInBootAlone", {"EFI/BOOT/BOOTx64.efi"}, IconState::macOSEFIMounted},
        FilesCase{"Nothing", {}, IconState::macOSEFIMounted}),
    [](const auto &row) { return row.param.name; });

struct SystemsCase {
    const char *name;
    Systems systems;
    IconState state;
};

class SystemsOfADisk : public IconStateTest, public testing::WithParamInterface<SystemsCase> {};

TEST_P(SystemsOfADisk, DecideTheStateWhereNoBootLoaderLies)
{
    const IconState state = iconState(true, {disk({mounted({})}, GetParam().systems)});

    EXPECT_EQ(rawValue(state), rawValue(GetParam().state));
}

INSTANTIATE_TEST_SUITE_P(
    IconState, SystemsOfADisk,
    testing::Values(SystemsCase{"All", {true, true, true, true}, IconState::macOSEFIMounted},
                    SystemsCase{"AllButMacOS", {false, true, true, true}, IconState::windowsEFIMounted},
                    SystemsCase{"LinuxAndExFAT", {false, false, true, true}, IconState::linuxEFIMounted},
                    SystemsCase{"ExFAT", {false, false, false, true}, IconState::exfatEFIMounted},
                    SystemsCase{"None", {}, IconState::genericEFIMounted}),
    [](const auto &row) { return row.param.name; });

TEST_F(IconStateTest, LooksAtTheFilesAndNotAtTheRecordsFindings)
{
    PhysicalDisk claimed = disk({mounted({})});
    claimed.hasOpenCore = true;
    claimed.hasClover = true;

    EXPECT_EQ(iconState(true, {claimed}), IconState::genericEFIMounted);
}

// --- nothing to tell

TEST_F(IconStateTest, IsDefaultBeforeTheFirstScanEndsEvenWithMountedPartitions)
{
    EXPECT_EQ(iconState(false, {disk({mounted({"EFI/OC/"})})}), IconState::defaultState);
}

TEST_F(IconStateTest, IsDefaultWithoutDisksAndWithoutMountedPartitions)
{
    EFIPartition unmounted = mounted({"EFI/OC/"});
    unmounted.isMounted = false;

    EXPECT_EQ(iconState(true, {}), IconState::defaultState);
    EXPECT_EQ(iconState(true, {disk({}, {.macOS = true})}), IconState::defaultState);
    EXPECT_EQ(iconState(true, {disk({unmounted}, {.macOS = true})}), IconState::defaultState);
}

TEST_F(IconStateTest, HearsNothingFromAMountedPartitionWithoutAMountPoint)
{
    const EFIPartition nowhere{.identifier = "disk1s1", .isMounted = true};

    EXPECT_EQ(iconState(true, {disk({nowhere}, {.macOS = true})}), IconState::defaultState);
    EXPECT_EQ(iconState(true, {disk({nowhere}, {.macOS = true}), disk({mounted({})}, {.windows = true})}),
              IconState::windowsEFIMounted);
}

TEST_F(IconStateTest, TakesAMountPointThatHasGoneForAnEmptyPartition)
{
    const EFIPartition gone{.identifier = "disk1s1", .isMounted = true, .mountPoint = (root() / "gone").string()};

    EXPECT_EQ(iconState(true, {disk({gone}, {.linuxes = true})}), IconState::linuxEFIMounted);
}

// --- several partitions

TEST_F(IconStateTest, LooksAtEveryMountedPartitionOfADisk)
{
    EXPECT_EQ(iconState(true, {disk({mounted({}), mounted({"EFI/CLOVER/"})}, {.macOS = true})}),
              IconState::cloverMounted);
}

TEST_F(IconStateTest, HasAFixedOrderThatTheOrderOfDisksDoesNotChange)
{
    // From the state that beats all others to the one that beats none.
    const std::vector<PhysicalDisk> ranked{disk({mounted({"EFI/OC/"})}),
                                           disk({mounted({"EFI/CLOVER/"})}),
                                           disk({mounted({})}, {.macOS = true}),
                                           disk({mounted({})}, {.windows = true}),
                                           disk({mounted({})}, {.linuxes = true}),
                                           disk({mounted({})}, {.exfat = true}),
                                           disk({mounted({})})};

    for (std::size_t first = 0; first < ranked.size(); ++first) {
        std::vector<PhysicalDisk> disks(ranked.begin() + static_cast<std::ptrdiff_t>(first), ranked.end());
        const IconState winner = iconState(true, {disks.front()});
        EXPECT_EQ(iconState(true, disks), winner) << rawValue(winner);
        std::reverse(disks.begin(), disks.end());
        EXPECT_EQ(iconState(true, disks), winner) << rawValue(winner);
    }
}

// --- names and colours

struct LookCase {
    IconState state;
    const char *name;
    std::optional<Color> color;
};

class LookOfAState : public testing::TestWithParam<LookCase> {};

TEST_P(LookOfAState, HasItsNameAndItsColour)
{
    EXPECT_EQ(rawValue(GetParam().state), GetParam().name);
    EXPECT_EQ(colorOf(GetParam().state), GetParam().color);
}

INSTANTIATE_TEST_SUITE_P(IconState, LookOfAState,
                         testing::Values(LookCase{IconState::defaultState, "default", std::nullopt},
                                         LookCase{IconState::openCoreMounted, "openCoreMounted", Color{"#00CCFF"}},
                                         LookCase{IconState::cloverMounted, "cloverMounted", Color{"#00CC00"}},
                                         LookCase{IconState::macOSEFIMounted, "macOSEFIMounted", Color{"blue"}},
                                         LookCase{IconState::windowsEFIMounted, "windowsEFIMounted", Color{"gray"}},
                                         LookCase{IconState::linuxEFIMounted, "linuxEFIMounted", Color{"#9900CC"}},
                                         LookCase{IconState::exfatEFIMounted, "exfatEFIMounted", Color{"red"}},
                                         LookCase{IconState::genericEFIMounted, "genericEFIMounted", Color{"blue"}}),
                         [](const auto &row) { return row.param.name; });

} // namespace
} // namespace brindle
