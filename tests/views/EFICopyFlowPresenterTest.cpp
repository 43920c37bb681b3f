#include "views/EFICopyFlowPresenter.h"

#include "EFICopyViewFixture.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>

namespace brindle {
namespace {

class EFICopyFlowPresenterTest : public EFICopyViewFixture {
protected:
    EFICopyFlowPresenterTest()
    {
        QObject::connect(&presenter, &EFICopyFlowPresenter::dialogChanged, [this] { ++changes; });
    }

    std::vector<PhysicalDisk> disks{disk("disk1", "Source", "source"), disk("disk2", "Target", "destination")};
    EFICopyFlow flow{manager, [this]() -> const std::vector<PhysicalDisk> & { return disks; }, clock};
    EFICopyFlowPresenter presenter{flow, manager};
    int changes = 0;
};

TEST_F(EFICopyFlowPresenterTest, HasADialogWhileTheSelectionIsShown)
{
    EXPECT_EQ(presenter.dialog(), nullptr);

    flow.onCopyEFI(disks[0], disks[0].efiPartitions[0]);

    ASSERT_NE(presenter.dialog(), nullptr);
    EXPECT_EQ(presenter.dialog()->sourceText(), u"Source: disk1s1 on Source");
    EXPECT_EQ(presenter.dialog()->destinationCount(), 1);
    EXPECT_EQ(changes, 1);
}

TEST_F(EFICopyFlowPresenterTest, LetsTheDialogCloseItself)
{
    flow.onCopyEFI(disks[0], disks[0].efiPartitions[0]);
    const QPointer dialog = presenter.dialog();

    dialog->cancel();

    EXPECT_EQ(presenter.dialog(), nullptr);
    EXPECT_FALSE(flow.showingDestinationSelection());
    EXPECT_EQ(changes, 2);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(dialog.isNull());
}

TEST_F(EFICopyFlowPresenterTest, CopiesWhatTheDialogChoseAndClosesIt)
{
    flow.onCopyEFI(disks[0], disks[0].efiPartitions[0]);
    presenter.dialog()->select(0);

    presenter.dialog()->copyEFI();
    waitUntil([this] { return manager.operationStatus() == "EFI copy completed successfully"; });
    waitUntil([this] { return !manager.isOperationInProgress(); });

    EXPECT_TRUE(std::filesystem::exists(folder() / "destination/EFI"));
    ASSERT_NE(presenter.dialog(), nullptr);
    clock.advance(EFICopyFlow::kAutoClose);
    EXPECT_EQ(presenter.dialog(), nullptr);
}

TEST_F(EFICopyFlowPresenterTest, BeginsEachOpeningAnew)
{
    flow.onCopyEFI(disks[0], disks[0].efiPartitions[0]);
    presenter.dialog()->setOverwriteWithoutBackup(true);
    presenter.dialog()->select(0);
    presenter.dialog()->cancel();

    flow.onCopyEFI(disks[1], disks[1].efiPartitions[0]);

    EXPECT_FALSE(presenter.dialog()->overwriteWithoutBackup());
    EXPECT_FALSE(presenter.dialog()->canCopy());
    EXPECT_EQ(presenter.dialog()->sourceText(), u"Source: disk2s1 on Target");
}

} // namespace
} // namespace brindle
