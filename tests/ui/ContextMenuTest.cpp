#include "ui/ContextMenu.h"

#include "state/AutoMountMarks.h"
#include "ui/Menus.h"
#include "views/WindowContentFixture.h"

#include <gmock/gmock.h>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The window over the real model: a disk with one EFI partition, and one with two.
class ContextMenuTest : public WindowContentFixture {
public:
    explicit ContextMenuTest(bool isMounted = false)
    {
        hold({externalDisk("disk2", {{.identifier = "disk2s1", .isMounted = isMounted}}),
              externalDisk("disk4", {{.identifier = "disk4s1"}, {.identifier = "disk4s2"}})});
        answerInfo("disk2s1", isMounted);
        for (const char *command : {"mount disk2s1", "unmount disk2s1"})
            answerSudo(command);
    }

    void openMenuOf(const char *row)
    {
        m_window.emplace("WindowContentView { width: 500; height: 600 }", 600,
                         QVariantMap{{QStringLiteral("presenter"), QVariant::fromValue(&content())}});
        m_window->click(QString::fromLatin1(row), Qt::RightButton);
    }

    /// Somebody else mounts or unmounts disk2s1, and the list is told.
    void publish(bool isMounted)
    {
        answerInfo("disk2s1", isMounted);
        finished(manager().updateEFIPartitionState("disk2s1"));
        ASSERT_EQ(manager().disks()[0].efiPartitions[0].isMounted, isMounted);
        QmlWindow::settle();
    }

    void choose(const char *entry) { chooseFromMenu(*m_window, QString::fromLatin1(entry)); }

    /// What ran with root's rights, after all that is still to come.
    std::vector<std::string> privilegedCalls()
    {
        clock.advance(std::chrono::seconds(10));
        QmlWindow::settle();
        return launcher.commandLines();
    }

    void setIsAutoMount(bool isAutoMount)
    {
        setAutoMountMarks(defaults, isAutoMount ? AutoMountMarks{{"UUID-disk2", "Disk disk2"}} : AutoMountMarks{});
    }

private:
    std::optional<QmlWindow> m_window;
};

TEST_F(ContextMenuTest, ObeysNothingInANameOfADisk)
{
    PhysicalDisk disk = externalDisk("disk2");
    disk.name = "<b>x</b>";
    disk.size = "R&amp;D";
    disk.volumeName = "&Mount";
    hold({disk});

    openMenuOf("disk2");

    ASSERT_TRUE(openMenu());
    std::vector<std::string> read; // an action's text for a button is without marks
    for (const QAction *action : openMenu()->actions().last(3)) {
        read.push_back(action->iconText().toStdString());
        EXPECT_TRUE(QKeySequence::mnemonic(action->text()).isEmpty()) << action->text().toStdString();
    }
    EXPECT_THAT(read, ElementsAre("<b>x</b>", "R&amp;D", "&Mount"));
    openMenu()->close();
}

struct MountEntry {
    const char *name;
    const char *entry;
    const char *command;
    bool isMounted; ///< When the menu was opened.

    friend void PrintTo(const MountEntry &row, std::ostream *out) { *out << row.name; }
};

class EntryOfMounting : public ContextMenuTest, public testing::WithParamInterface<MountEntry> {
public:
    EntryOfMounting() : ContextMenuTest(GetParam().isMounted) {}
};

INSTANTIATE_TEST_SUITE_P(ContextMenu, EntryOfMounting,
                         testing::Values(MountEntry{"Mount", "Mount EFI", "mount disk2s1", false},
                                         MountEntry{"Unmount", "Unmount EFI", "unmount disk2s1", true}),
                         [](const auto &row) { return row.param.name; });

TEST_P(EntryOfMounting, DoesWhatItSays)
{
    openMenuOf("disk2");

    choose(GetParam().entry);

    EXPECT_THAT(privilegedCalls(), ElementsAre(sudo(GetParam().command)));
}

TEST_P(EntryOfMounting, NeverDoesTheOppositeOfWhatItSays)
{
    openMenuOf("disk2");

    publish(!GetParam().isMounted);
    choose(GetParam().entry);

    EXPECT_THAT(privilegedCalls(), IsEmpty());
}

TEST_F(ContextMenuTest, LeavesAListExpandedThatWasExpandedMeanwhile)
{
    openMenuOf("disk4");

    manager().toggleExpanded("disk4");
    choose("Expand EFI List");

    EXPECT_THAT(manager().expandedDisks(), ElementsAre("disk4"));
}

TEST_F(ContextMenuTest, LeavesAListCollapsedThatWasCollapsedMeanwhile)
{
    manager().toggleExpanded("disk4");
    openMenuOf("disk4");

    manager().toggleExpanded("disk4");
    choose("Collapse EFI List");

    EXPECT_THAT(manager().expandedDisks(), IsEmpty());
}

TEST_F(ContextMenuTest, LeavesAnAutoMountEnabledThatWasEnabledMeanwhile)
{
    openMenuOf("disk2");

    setIsAutoMount(true);
    choose("Enable EFI Auto-Mount");

    EXPECT_THAT(autoMountMarks(defaults), ElementsAre(std::pair("UUID-disk2", "Disk disk2")));
}

TEST_F(ContextMenuTest, LeavesAnAutoMountDisabledThatWasDisabledMeanwhile)
{
    setIsAutoMount(true);
    openMenuOf("disk2");

    setIsAutoMount(false);
    choose("Disable EFI Auto-Mount");

    EXPECT_THAT(autoMountMarks(defaults), IsEmpty());
}

} // namespace
} // namespace brindle
