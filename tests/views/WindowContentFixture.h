#pragma once

#include "state/DiskActionsFixture.h"
#include "support/FakeEraseOperations.h"
#include "support/FakeWindowHost.h"
#include "support/FileTree.h"
#include "support/MountedPlaces.h"
#include "support/WaitUntil.h"
#include "views/WindowContentPresenter.h"

#include "platform/linux/LinuxFileManager.h"

#include <fmt/format.h>

#include <functional>
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

    void appear()
    {
        content();
        openWindow();
        content().appear();
        clock.advance({});
    }

    /// The heights that the window was given.
    [[nodiscard]] std::vector<std::string> heights() const
    {
        std::vector<std::string> result;
        for (const std::string &line : windowJournal) {
            if (line.starts_with("height "))
                result.push_back(line);
        }
        return result;
    }

    DiskRowPresenter &row(int index = 0) { return content().rows()->row(index); }

    /// A disk with a folder to copy, and \a destinations more, each with an old folder; all are mounted.
    void holdSourceAndDestinations(int destinations)
    {
        std::vector<PhysicalDisk> disks;
        for (int i = 0; i <= destinations; ++i) {
            const std::string identifier = fmt::format("disk{}", 2 + i);
            const std::string place = fmt::format("{}/{}", root(), identifier);
            writeSampleEFI(place + "/EFI");
            disks.push_back(
                externalDisk(identifier, {{.identifier = identifier + "s1", .isMounted = true, .mountPoint = place}}));
        }
        hold(disks);
    }

    /// Takes \a shown through a copy in place of an old folder, and looks in each of its states: selection, in
    /// progress, confirmation, in progress, selection again, and after all the list.
    void walkThroughACopy(WindowContentPresenter &shown, const std::function<void()> &look)
    {
        const auto lookOnce = [&](const std::function<bool()> &isThere) {
            waitUntil(isThere);
            look();
            places.release();
        };
        EFICopyFlow &flow = shown.copyFlow();
        shown.rows()->row(0).perform(RowAction::copyEFI);
        lookOnce([&] { return flow.showingDestinationSelection(); });
        places.hold();
        flow.onDestinationSelected(flow.availableDestinations().front(), false);
        lookOnce([this] { return copyManager.isOperationInProgress(); });
        lookOnce([this] { return copyManager.showConfirmationDialog(); });
        places.hold();
        copyManager.confirmationData()->onOverwrite();
        lookOnce([this] { return !copyManager.showConfirmationDialog(); });
        lookOnce([this] { return !copyManager.isOperationInProgress(); });
        clock.advance(EFICopyFlow::kAutoClose);
        lookOnce([&] { return !flow.showingDestinationSelection(); });
    }

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
