#include "ui/QmlWindow.h"
#include "views/WindowContentFixture.h"

#include "support/WaitUntil.h"

namespace brindle {
namespace {

/// The line beneath the list of two disks whose EFI partitions are mounted.
class DiskListFooterViewTest : public WindowContentFixture {
protected:
    DiskListFooterViewTest()
    {
        PhysicalDisk source = externalDisk("disk2", {{.identifier = "disk2s1", .isMounted = true}});
        PhysicalDisk destination = externalDisk("disk3", {{.identifier = "disk3s1", .isMounted = true}});
        source.efiPartitions[0].mountPoint = mountPoint();
        destination.efiPartitions[0].mountPoint = root() + "/gone";
        hold({source, destination});
        answerInfo("disk2s1", true);
    }

    QmlWindow &window()
    {
        if (!m_window)
            m_window.emplace("DiskListFooterView { width: 500 }", 400,
                             QVariantMap{{QStringLiteral("presenter"), QVariant::fromValue(&content())}});
        return *m_window;
    }

    /// The text, with "* " before it while the spinner turns.
    [[nodiscard]] std::string status()
    {
        QmlWindow::settle();
        const QString spinner = QStringLiteral("statusSpinner");
        const bool spins = window().shows(spinner) && window().item(spinner).width() > 0;
        return (spins ? "* " : "") + window().textOf(QStringLiteral("statusText"));
    }

private:
    std::optional<QmlWindow> m_window;
};

TEST_F(DiskListFooterViewTest, SpinsWhileAnActionRuns)
{
    answerSudo("unmount disk2s1");
    for (int time = 0; time < 2; ++time) {
        ASSERT_EQ(status(), "Ready");
        launcher.hold(sudo("unmount disk2s1"));

        row().perform(RowAction::toggleMount);
        clock.advance({});
        EXPECT_EQ(status(), "* Unmounting EFI partition of Disk disk2");

        launcher.release(sudo("unmount disk2s1"));
        settle();
    }
    EXPECT_EQ(status(), "Ready");
}

TEST_F(DiskListFooterViewTest, SpinsWhileAScanRuns)
{
    const std::string listing = diskutil("list physical");
    for (int time = 0; time < 2; ++time) {
        ASSERT_EQ(status(), "Ready");
        tools.hold(listing);

        auto scan = manager().startScan(true);
        awaitCall(listing);
        EXPECT_EQ(status(), "* Scanning disks...");

        tools.release(listing);
        finished(std::move(scan));
    }
    EXPECT_EQ(status(), "Ready");
}

TEST_F(DiskListFooterViewTest, SpinsWhileACopyRunsWhoseDialogIsClosed)
{
    writeSampleEFI(mountPoint() + "/EFI");
    EFICopyFlow &flow = content().copyFlow();
    const PhysicalDisk source = manager().disks()[0];
    for (int time = 0; time < 2; ++time) {
        ASSERT_EQ(status(), "Ready");

        flow.onCopyEFI(source, source.efiPartitions[0]);
        flow.onDestinationSelected(flow.availableDestinations().front(), true);
        flow.onCancel();
        const std::string failure = "Copy failed: "; // which leaves the copy standing
        waitUntil([&] { return copyManager.operationStatus().starts_with(failure); });
        EXPECT_EQ(status().substr(0, 2 + failure.size()), "* " + failure);

        copyManager.cancelOperation();
        EXPECT_EQ(status(), "Operation cancelled");
        clock.advance(std::chrono::seconds(5));
    }
    EXPECT_EQ(status(), "Ready");
}

} // namespace
} // namespace brindle
