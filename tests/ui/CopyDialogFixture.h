#pragma once

#include "ui/Stillness.h"
#include "views/EFICopyFlowPresenter.h"
#include "views/EFICopyViewFixture.h"

#include <memory>

namespace brindle {

/// The copy dialog on the real copy engine: "Source" (disk1) and "Target" (disk2), a mounted EFI partition each.
class CopyDialogFixture : public EFICopyViewFixture {
protected:
    static constexpr int kHeightOfOneDestination = 428;

    /// Opens the dialog for the first disk and shows it.
    QmlWindow &open(int height = kHeightOfOneDestination)
    {
        flow.onCopyEFI(disks[0], disks[0].efiPartitions[0]);
        m_window = std::make_unique<QmlWindow>(
            R"(Rectangle {
                   id: root
                   required property EFICopyFlowPresenter flow
                   anchors.fill: parent
                   color: Theme.window
                   Loader {
                       anchors.fill: parent
                       focus: true
                       active: root.flow.dialog !== null
                       sourceComponent: EFIDestinationSelectionView { dialog: root.flow.dialog; focus: true }
                   }
               })",
            height, QVariantMap{{QStringLiteral("flow"), QVariant::fromValue(&presenter)}});
        return *m_window;
    }

    QmlWindow &window() { return *m_window; }

    void waitForEnd()
    {
        waitUntil([this] { return !manager.isOperationInProgress(); });
        waitForStillness(window());
    }

    /// Picks the first destination, copies, and waits for the question what becomes of the old folder.
    void copyUntilConfirmation()
    {
        window().click(QStringLiteral("destination0"));
        window().click(QStringLiteral("copyButton"));
        waitUntil([this] { return manager.showConfirmationDialog(); });
        waitForStillness(window());
    }

    /// Copies to a disk that has gone, which hangs until it is cancelled.
    void copyUntilItHangs()
    {
        std::filesystem::remove_all(folder() / "destination");
        window().click(QStringLiteral("destination0"));
        window().click(QStringLiteral("copyButton"));
        waitUntil([this] { return manager.operationStatus().starts_with("Copy failed: "); });
        waitForStillness(window());
    }

    /// Replaces an old folder by one that has gone meanwhile.
    void copyUntilFailure()
    {
        writeOldEFI();
        open();
        copyUntilConfirmation();
        std::filesystem::remove_all(folder() / "source/EFI");
        window().click(QStringLiteral("option1"));
        waitForEnd();
    }

    [[nodiscard]] bool oldEFIIsThere() const { return std::filesystem::exists(folder() / "destination/EFI/old"); }

    std::vector<PhysicalDisk> disks{disk("disk1", "Source", "source"), disk("disk2", "Target", "destination")};
    EFICopyFlow flow{manager, [this]() -> const std::vector<PhysicalDisk> & { return disks; }, clock};
    EFICopyFlowPresenter presenter{flow, manager};

private:
    std::unique_ptr<QmlWindow> m_window;
};

} // namespace brindle
