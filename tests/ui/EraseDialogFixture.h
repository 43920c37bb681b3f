#pragma once

#include "ui/Stillness.h"
#include "views/EraseProgressPresenter.h"

#include "efi/EraseFlow.h"
#include "support/FakeEraseOperations.h"
#include "support/LogCapture.h"

#include <memory>

namespace brindle {

/// The erase dialog for the disk "Stick" with the volume "WORK", which can be erased alone.
class EraseDialogFixture : public testing::Test {
protected:
    static constexpr int kHeightOfConfirmation = 578;
    static constexpr int kHeightOfLaterStages = 428;

    QmlWindow &openForDisk(int height = kHeightOfConfirmation)
    {
        flow.openForDisk(stick, {});
        return show(height);
    }
    QmlWindow &openForEFIPartition(int height = kHeightOfConfirmation)
    {
        flow.openForEFIPartition(stick, efi, {});
        return show(height);
    }

    QmlWindow &window() { return *m_window; }

    void waitForResult()
    {
        waitUntil([this] { return manager.stage() >= EraseOperationManager::Stage::completed; });
        QmlWindow::settle();
    }

    LogCapture log;
    PhysicalDisk stick{
        .identifier = "disk2", .name = "Stick", .size = "16 GB", .mountPoint = "/Volumes/WORK", .volumeName = "WORK"};
    EFIPartition efi{.identifier = "disk2s1", .volumeName = "BOOT"};
    FakeEraseOperations operations;
    EraseOperationManager manager;
    EraseFlow flow{manager, operations};
    EraseProgressPresenter presenter{manager};

private:
    QmlWindow &show(int height)
    {
        m_window = std::make_unique<QmlWindow>(
            R"(Rectangle {
                   id: root
                   required property EraseProgressPresenter erase
                   anchors.fill: parent
                   color: Theme.window
                   Loader {
                       anchors.fill: parent
                       focus: true
                       active: root.erase.isActive
                       sourceComponent: EraseProgressView { erase: root.erase; focus: true }
                   }
               })",
            height, QVariantMap{{QStringLiteral("erase"), QVariant::fromValue(&presenter)}});
        return *m_window;
    }

    std::unique_ptr<QmlWindow> m_window;
};

} // namespace brindle
