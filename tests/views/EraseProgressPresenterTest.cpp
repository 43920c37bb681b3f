#include "views/EraseProgressPresenter.h"

#include <gmock/gmock.h>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Stage = EraseProgressPresenter::Stage;

class EraseProgressPresenterTest : public testing::Test {
protected:
    EraseProgressPresenterTest()
    {
        QObject::connect(&erase, &EraseProgressPresenter::changed, [this] { ++changes; });
    }

    void open()
    {
        manager.open({.dialogTitle = "Erase Disk?",
                      .diskName = "Stick",
                      .volumeName = "WORK",
                      .warningText = "All of it goes.",
                      .confirmName = "WORK",
                      .formatOptions = eraseFormatOptions(),
                      .allowPartitionScope = true,
                      .eraseScope = EraseScope::partition,
                      .onErase = [this](const std::string &format, EraseScope scope) {
                          erased.push_back(format + (scope == EraseScope::partition ? " volume" : " disk"));
                      }});
    }

    EraseOperationManager manager;
    EraseProgressPresenter erase{manager};
    std::vector<std::string> erased;
    int changes = 0;
};

TEST_F(EraseProgressPresenterTest, AsksForTheNameBeforeItErases)
{
    open();

    EXPECT_TRUE(erase.isActive());
    EXPECT_EQ(erase.stage(), Stage::Confirming);
    EXPECT_EQ(erase.symbol(), u"exclamationmark.triangle.fill");
    EXPECT_EQ(erase.symbolColor(), u"red");
    EXPECT_EQ(erase.title(), u"Erase Disk?");
    EXPECT_EQ(erase.name(), u"WORK");
    EXPECT_EQ(erase.line(), u"on Stick");
    EXPECT_EQ(erase.warningText(), u"All of it goes.");
    EXPECT_TRUE(erase.allowPartitionScope());
    EXPECT_FALSE(erase.isWholeDisk());
    EXPECT_THAT(erase.formatLabels(),
                ElementsAre(QStringLiteral("ExFAT"), QStringLiteral("FAT32 (MS-DOS)"),
                            QStringLiteral("Mac OS Extended (Journaled)"), QStringLiteral("APFS")));
    EXPECT_EQ(erase.selectedFormatIndex(), 0);
    EXPECT_EQ(erase.confirmPrompt(), u"Type \"WORK\" to confirm");
    EXPECT_EQ(erase.mismatchText(), u"");
    EXPECT_TRUE(erase.offersErase());
    EXPECT_FALSE(erase.offersDone());
}

TEST_F(EraseProgressPresenterTest, ErasesWhatWasChosenOnceTheNameIsTyped)
{
    open();
    erase.setIsWholeDisk(true);
    erase.setSelectedFormatIndex(1);
    erase.setConfirmInput(QStringLiteral("WORK"));

    erase.confirm();

    EXPECT_THAT(erased, ElementsAre("FAT32 disk"));
    EXPECT_EQ(erase.stage(), Stage::InProgress);
    EXPECT_EQ(erase.title(), u"Erasing...");
    EXPECT_EQ(erase.name(), u"Stick");
    EXPECT_EQ(erase.line(), u"Volume: WORK");
    EXPECT_EQ(erase.scopeNote(), u"Repartitions the entire disk, including the EFI partition.");
    EXPECT_EQ(erase.statusMessage(), u"Erasing and repartitioning as FAT32 (MS-DOS)...");
    EXPECT_FALSE(erase.offersErase() || erase.offersDone());
}

TEST_F(EraseProgressPresenterTest, TakesTheMismatchBackAtAnyEdit)
{
    open();
    erase.setConfirmInput(QStringLiteral("work"));
    erase.confirm();
    EXPECT_EQ(erase.mismatchText(), u"That doesn't match \"WORK\" — try again.");

    erase.setConfirmInput(QStringLiteral("wor"));

    EXPECT_EQ(erase.mismatchText(), u"");
    EXPECT_EQ(erase.confirmInput(), u"wor");
    EXPECT_THAT(erased, IsEmpty());
}

struct WrongName {
    const char *name;
    const char *typed;
};

class RefusedName : public EraseProgressPresenterTest, public testing::WithParamInterface<WrongName> {};

INSTANTIATE_TEST_SUITE_P(Of, RefusedName,
                         testing::Values(WrongName{"WrongCase", "Work"}, WrongName{"TrailingBlank", "WORK "},
                                         WrongName{"LeadingBlank", " WORK"}, WrongName{"Nothing", ""},
                                         WrongName{"MoreThanTheName", "WORKS"}),
                         [](const auto &row) { return row.param.name; });

TEST_P(RefusedName, ErasesNothing)
{
    open();
    erase.setConfirmInput(QString::fromUtf8(GetParam().typed));

    erase.confirm();

    EXPECT_THAT(erased, IsEmpty());
    EXPECT_EQ(erase.stage(), Stage::Confirming);
    EXPECT_NE(erase.mismatchText(), u"");
}

TEST_F(EraseProgressPresenterTest, KeepsTheFormatWhereThereIsNoneOfThatIndex)
{
    open();
    erase.setSelectedFormatIndex(3);

    erase.setSelectedFormatIndex(4);
    erase.setSelectedFormatIndex(-1);

    EXPECT_EQ(erase.selectedFormatIndex(), 3);
}

struct ResultCase {
    const char *name;
    EraseOperationManager::Stage ended;
    Stage stage;
    const char *title;
    const char *symbol;
    const char *color;
};

class EraseResult : public EraseProgressPresenterTest, public testing::WithParamInterface<ResultCase> {};

INSTANTIATE_TEST_SUITE_P(Of, EraseResult,
                         testing::Values(ResultCase{"Completed", EraseOperationManager::Stage::completed,
                                                    Stage::Completed, "Erase Complete", "checkmark.circle.fill",
                                                    "green"},
                                         ResultCase{"Failed", EraseOperationManager::Stage::failed, Stage::Failed,
                                                    "Erase Failed", "xmark.circle.fill", "red"}),
                         [](const auto &row) { return row.param.name; });

TEST_P(EraseResult, IsTold)
{
    open();

    manager.finish(GetParam().ended, "It is over.");

    EXPECT_EQ(erase.stage(), GetParam().stage);
    EXPECT_EQ(erase.title().toStdString(), GetParam().title);
    EXPECT_EQ(erase.symbol().toStdString(), GetParam().symbol);
    EXPECT_EQ(erase.symbolColor().toStdString(), GetParam().color);
    EXPECT_EQ(erase.resultMessage(), u"It is over.");
    EXPECT_TRUE(erase.offersDone());
    EXPECT_FALSE(erase.offersErase());
}

TEST_F(EraseProgressPresenterTest, ClosesWithEscapeWhereAButtonWould)
{
    open();
    erase.escape();
    EXPECT_FALSE(erase.isActive());

    open();
    manager.finish(EraseOperationManager::Stage::failed, "No.");
    erase.escape();
    EXPECT_FALSE(erase.isActive());
    EXPECT_THAT(erased, IsEmpty());
}

TEST_F(EraseProgressPresenterTest, StaysOpenOnEscapeWhileItErases)
{
    open();
    erase.setConfirmInput(QStringLiteral("WORK"));
    erase.confirm();

    erase.escape();

    EXPECT_TRUE(erase.isActive());
    EXPECT_EQ(erase.stage(), Stage::InProgress);
}

TEST_F(EraseProgressPresenterTest, MakesStrangersNamesVisibleText)
{
    manager.open({.diskName = "Di\x1bsk", .volumeName = "V\u202eN", .confirmName = "V\u202eN"});

    EXPECT_EQ(erase.name(), u"Di<U+001B>sk");
    EXPECT_EQ(erase.line(), u"Volume: V<U+202E>N");
    EXPECT_EQ(erase.confirmPrompt(), u"Type \"V<U+202E>N\" to confirm");
}

TEST_F(EraseProgressPresenterTest, TellsEveryChange)
{
    open();
    const auto changesOf = [this](auto change) {
        changes = 0;
        change();
        return changes;
    };

    EXPECT_GT(changesOf([this] { erase.setConfirmInput(QStringLiteral("x")); }), 0);
    EXPECT_GT(changesOf([this] { erase.confirm(); }), 0);
    EXPECT_GT(changesOf([this] { erase.setIsWholeDisk(true); }), 0);
    EXPECT_GT(changesOf([this] { erase.setSelectedFormatIndex(2); }), 0);
    EXPECT_GT(changesOf([this] { erase.dismiss(); }), 0);
}

} // namespace
} // namespace brindle
