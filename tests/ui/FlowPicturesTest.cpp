#include "ui/CopyDialogFixture.h"
#include "ui/EraseDialogFixture.h"
#include "ui/Pictures.h"
#include "ui/UserInterface.h"

namespace brindle {
namespace {

/// Whatever the window's height: each button below is whole in sight, and no text sticks out of the window's sides.
void expectInSight(QmlWindow &window)
{
    const QRectF frame(QPointF(), window.window().size());
    forEachVisible(*window.window().contentItem(), [&](const QQuickItem &item) {
        const QRectF place = item.mapRectToScene(QRectF(0, 0, item.width(), item.height()));
        const QString name = item.objectName();
        if (name.endsWith(u"Button") || name.startsWith(u"option"))
            EXPECT_TRUE(frame.contains(place)) << name.toStdString();
        if (item.property("text").isValid()) {
            EXPECT_GE(place.left(), 0) << item.property("text").toString().toStdString();
            EXPECT_LE(place.right(), frame.right()) << item.property("text").toString().toStdString();
        }
    });
}

/// The picture once nothing fades any more.
void expectPicture(QmlWindow &window, ColorScheme scheme, const std::string &name)
{
    setColorScheme(window.engine(), scheme);
    waitForStillness(window);
    expectInSight(window);
    keepPicture(window.picture(), name + (scheme == ColorScheme::dark ? "-dark" : "-light"));
    setColorScheme(window.engine(), ColorScheme::light);
}

constexpr auto kSchemes = {ColorScheme::light, ColorScheme::dark};

std::string longName(const char *beginning)
{
    return std::string(beginning) + " with a Name That Its Maker Has Made Far Too Long for Any Window, Revision 12B";
}

class CopyPictures : public CopyDialogFixture, public testing::WithParamInterface<ColorScheme> {
protected:
    void addDisks()
    {
        disks[1].name = longName("Boot Disk");
        disks[1].isBootDisk = true;
        disks[1].hasOpenCore = true;
        disks[1].hasClover = true;
        disks[1].efiPartitions[0].volumeName = "A VOLUME LABEL THAT IS LONG TOO";
        disks[0].name = longName("Source");
        for (const char *identifier : {"disk3", "disk4", "disk5"})
            disks.push_back(disk(identifier, "Stick", "other"));
        disks[2].efiPartitions[0].volumeName = "EFI";
        disks[3].hasOpenCore = true;
    }
};

INSTANTIATE_TEST_SUITE_P(Schemes, CopyPictures, testing::ValuesIn(kSchemes),
                         [](const auto &row) { return row.param == ColorScheme::dark ? "Dark" : "Light"; });

TEST_P(CopyPictures, ShowTheSelection)
{
    expectPicture(open(), GetParam(), "copy-selection");
}

TEST_P(CopyPictures, ShowTheSelectionWithTheLongestNamesAndAllWarnings)
{
    addDisks();
    open(608);
    presenter.dialog()->select(0);
    presenter.dialog()->setOverwriteWithoutBackup(true);

    expectPicture(window(), GetParam(), "copy-selection-warnings");
}

TEST_P(CopyPictures, ShowTheSelectionOnALowScreen)
{
    addDisks();
    open(QmlWindow::kHeightOn600Points);
    presenter.dialog()->select(0);
    presenter.dialog()->setOverwriteWithoutBackup(true);

    expectPicture(window(), GetParam(), "copy-selection-600");
}

TEST_P(CopyPictures, ShowTheConfirmation)
{
    writeOldEFI();
    open(578);
    copyUntilConfirmation();

    expectPicture(window(), GetParam(), "copy-confirmation");
}

TEST_P(CopyPictures, ShowTheConfirmationOfTheBootDisk)
{
    writeOldEFI();
    disks[1].isBootDisk = true;
    open(578);
    copyUntilConfirmation();

    expectPicture(window(), GetParam(), "copy-confirmation-boot");
}

TEST_P(CopyPictures, ShowTheConfirmationOfTheBootDiskOnALowScreen)
{
    writeOldEFI();
    disks[1].isBootDisk = true;
    open(QmlWindow::kHeightOn600Points);
    copyUntilConfirmation();

    expectPicture(window(), GetParam(), "copy-confirmation-600");
}

TEST_P(CopyPictures, ShowACopyThatHasFailedAndHangs)
{
    open();
    copyUntilItHangs();

    expectPicture(window(), GetParam(), "copy-progress");
}

TEST_P(CopyPictures, ShowTheLongestNamesOfSourceAndDestination)
{
    for (PhysicalDisk &disk : disks)
        disk.efiPartitions[0].volumeName = longName("A Partition");
    writeOldEFI();
    open();
    copyUntilConfirmation(); // as long as the choice is awaited, there are ends
    QmlWindow progress(R"(Rectangle {
                              required property EFIDestinationSelectionPresenter dialog
                              anchors.fill: parent
                              color: Theme.window
                              OperationProgressView { anchors.fill: parent; dialog: parent.dialog }
                          })",
                       kHeightOfOneDestination, {{QStringLiteral("dialog"), QVariant::fromValue(presenter.dialog())}});

    expectPicture(progress, GetParam(), "copy-progress-long");
}

TEST_P(CopyPictures, ShowASuccess)
{
    open();
    window().click(QStringLiteral("destination0"));
    window().click(QStringLiteral("copyButton"));
    waitUntil([this] { return manager.operationStatus() == "EFI copy completed successfully"; });
    waitForEnd();

    expectPicture(window(), GetParam(), "copy-success");
}

TEST_P(CopyPictures, ShowAFailure)
{
    copyUntilFailure();

    expectPicture(window(), GetParam(), "copy-failure");
}

class ErasePictures : public EraseDialogFixture, public testing::WithParamInterface<ColorScheme> {
protected:
    void lengthenNames()
    {
        stick.name = longName("Stick");
        stick.volumeName = "A VOLUME LABEL THAT IS LONG TOO • ANOTHER ONE";
    }
};

INSTANTIATE_TEST_SUITE_P(Schemes, ErasePictures, testing::ValuesIn(kSchemes),
                         [](const auto &row) { return row.param == ColorScheme::dark ? "Dark" : "Light"; });

TEST_P(ErasePictures, ShowTheQuestionForADisk)
{
    expectPicture(openForDisk(), GetParam(), "erase-disk");
}

TEST_P(ErasePictures, ShowTheMismatch)
{
    openForDisk();
    window().type(QStringLiteral("work"));
    window().click(QStringLiteral("eraseButton"));

    expectPicture(window(), GetParam(), "erase-mismatch");
}

TEST_P(ErasePictures, ShowTheFormats)
{
    openForDisk();
    window().click(QStringLiteral("formatPicker"));

    expectPicture(window(), GetParam(), "erase-formats");
}

TEST_P(ErasePictures, ShowTheQuestionForAnEFIPartition)
{
    expectPicture(openForEFIPartition(), GetParam(), "erase-efi");
}

TEST_P(ErasePictures, ShowTheLongestNamesOnALowScreen)
{
    lengthenNames();
    openForDisk(QmlWindow::kHeightOn600Points);
    window().click(QStringLiteral("eraseButton"));

    expectPicture(window(), GetParam(), "erase-long-600");
}

TEST_P(ErasePictures, ShowTheWork)
{
    openForDisk(kHeightOfLaterStages);
    window().type(QStringLiteral("WORK"));
    window().click(QStringLiteral("eraseButton"));
    manager.finish(EraseOperationManager::Stage::inProgress, "");

    expectPicture(window(), GetParam(), "erase-work");
}

TEST_P(ErasePictures, ShowTheResult)
{
    lengthenNames();
    openForDisk(kHeightOfLaterStages);
    presenter.setConfirmInput(QString::fromStdString(stick.volumeName.value()));
    window().click(QStringLiteral("eraseButton"));
    waitForResult();

    expectPicture(window(), GetParam(), "erase-completed");
}

TEST_P(ErasePictures, ShowAFailure)
{
    operations.failure = Error("SudoError", 1, "Resource busy");
    openForEFIPartition(kHeightOfLaterStages);
    window().type(QStringLiteral("BOOT"));
    window().click(QStringLiteral("eraseButton"));
    waitForResult();

    expectPicture(window(), GetParam(), "erase-failed");
}

} // namespace
} // namespace brindle
