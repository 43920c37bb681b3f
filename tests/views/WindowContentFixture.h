#pragma once

#include "state/DiskActionsFixture.h"
#include "support/FakeEraseOperations.h"
#include "support/FakeWindowHost.h"
#include "support/MountedPlaces.h"
#include "views/WindowContentPresenter.h"

#include "platform/linux/LinuxFileManager.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace brindle {

/// A window's content over the model of DiskActionsFixture, which holds what was given to hold() before the first call
/// of content(). The window is there, 150 points high; what its host is asked stands in windowJournal.
class WindowContentFixture : public DiskActionsFixture {
protected:
    WindowContentPresenter::Surroundings surroundings(EraseFlow &flow, Dialogs &shown, WindowHost &host)
    {
        return {.model = {.diskManager = manager(),
                          .efiOperations = efiOperations(),
                          .dialogs = shown,
                          .workspace = workspace,
                          .userDefaults = defaults},
                .efiCopyManager = copyManager,
                .eraseManager = eraseManager,
                .eraseFlow = flow,
                .userDefaults = defaults,
                .scheduler = clock,
                .windowHost = host,
                .unfinishedWork = unfinishedWork,
                .notifications = notifications};
    }

    WindowContentPresenter &content()
    {
        if (!m_content)
            m_content.emplace(surroundings(eraseFlow, dialogs, windowHost));
        return *m_content;
    }

    void openWindow() { windowHost.makeKeyAndOrderFront(windowHost.create(500, 150)); }

    DiskRowPresenter &row(int index = 0) { return content().rows()->row(index); }

    /// The first scan is over; it has found nothing.
    void findNoDisks()
    {
        defaults.set(DefaultsKeys::kIsModeSwitchRelaunch, false);
        paths = ToolPaths::system();
        plugIn({});
        scan();
    }

    /// Lets everything that was begun end.
    void settle() { clock.advance(std::chrono::milliseconds(700)); }

    [[nodiscard]] static PhysicalDisk externalDisk(std::string identifier, std::vector<EFIPartition> partitions = {})
    {
        return {.identifier = identifier,
                .mediaUUID = "UUID-" + identifier,
                .name = "Disk " + identifier,
                .size = "16.0 GB",
                .efiPartitions = std::move(partitions),
                .diskType = PhysicalDisk::DiskType::physicalExternal};
    }

    std::vector<std::string> windowJournal;
    FakeWindowHost windowHost{windowJournal};
    LinuxFileManager files;
    MountedPlaces places;
    EFICopyManager copyManager{files, dialogs, clock, unfinishedWork, places.look()};
    EraseOperationManager eraseManager;
    FakeEraseOperations eraseOperations;
    EraseFlow eraseFlow{eraseManager, eraseOperations};
    NotificationCenter notifications;

private:
    std::optional<WindowContentPresenter> m_content;
};

} // namespace brindle
