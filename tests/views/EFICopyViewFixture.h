#pragma once

#include "efi/EFICopyManager.h"
#include "platform/linux/LinuxFileManager.h"
#include "support/FakeDialogs.h"
#include "support/FileTree.h"
#include "support/ManualClock.h"
#include "support/MountedPlaces.h"
#include "support/WaitUntil.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <filesystem>

namespace brindle {

/// The real copy engine on two disks with a mounted EFI partition each.
class EFICopyViewFixture : public testing::Test {
protected:
    EFICopyViewFixture()
    {
        writeSampleEFI(folder() / "source/EFI");
        std::filesystem::create_directories(folder() / "destination");
    }

    [[nodiscard]] std::filesystem::path folder() const { return m_folder.path().toStdString(); }

    void writeOldEFI() const { writeFile(folder() / "destination/EFI/old", "old"); }

    [[nodiscard]] PhysicalDisk disk(std::string identifier, std::string name, const char *mountPoint) const
    {
        return {
            .identifier = identifier,
            .name = std::move(name),
            .efiPartitions = {
                {.identifier = identifier + "s1", .isMounted = true, .mountPoint = (folder() / mountPoint).string()}}};
    }

    ManualClock clock;
    FakeDialogs dialogs;
    LinuxFileManager files;
    UnfinishedWork unfinishedWork;
    MountedPlaces places;
    EFICopyManager manager{files, dialogs, clock, unfinishedWork, places.look()};

private:
    QTemporaryDir m_folder{QStringLiteral("/dev/shm/brindle-XXXXXX")}; // in memory: each copy is flushed
};

} // namespace brindle
