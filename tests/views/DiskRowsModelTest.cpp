#include "views/DiskRowsModel.h"

#include "views/WindowContentFixture.h"

namespace brindle {
namespace {

using testing::ElementsAre;

class DiskRowsModelTest : public WindowContentFixture {
protected:
    void show(const std::vector<PhysicalDisk> &disks, const std::set<std::string> &expanded = {})
    {
        model.setDisks(disks, expanded);
    }

    [[nodiscard]] std::vector<std::string> shownRows() const
    {
        std::vector<std::string> identifiers;
        for (int i = 0; i < model.rowCount(); ++i)
            identifiers.push_back(model.row(i).identifier().toStdString());
        return identifiers;
    }

    [[nodiscard]] std::string neighbour(const char *identifier, int steps) const
    {
        return model.neighbour(QString::fromLatin1(identifier), steps).toStdString();
    }
    [[nodiscard]] std::string find(const char *identifier, const char *typed, bool isNext) const
    {
        return model.find(QString::fromLatin1(identifier), QString::fromLatin1(typed), isNext).toStdString();
    }

    DiskManager &m_manager = manager();
    RowSurroundings surroundings{.model = {.diskManager = m_manager,
                                           .efiOperations = efiOperations(),
                                           .dialogs = dialogs,
                                           .workspace = workspace,
                                           .userDefaults = defaults},
                                 .userDefaults = defaults,
                                 .eraseFlow = eraseFlow};
    DiskRowsModel model{surroundings};
};

TEST_F(DiskRowsModelTest, KeepsTheRowsOfDisksThatStayWhereverTheyGo)
{
    show({externalDisk("disk2"), externalDisk("disk3"), externalDisk("disk4")});
    const DiskRowPresenter *disk4 = &model.row(2);

    show({externalDisk("disk4"), externalDisk("disk5"), externalDisk("disk2")});

    EXPECT_THAT(shownRows(), ElementsAre("disk4", "disk5", "disk2"));
    EXPECT_EQ(&model.row(0), disk4);
    show({});
    EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(DiskRowsModelTest, TellsOfNothingWhereAPublishLooksTheSame)
{
    show({externalDisk("disk2", {{.identifier = "disk2s1"}}), externalDisk("disk3")});
    int changes = 0;
    for (int i = 0; i < 2; ++i)
        QObject::connect(&model.row(i), &RowPresenter::changed, [&] { ++changes; });

    show({externalDisk("disk2", {{.identifier = "disk2s1"}}), externalDisk("disk3")});
    EXPECT_EQ(changes, 0);

    PhysicalDisk named = externalDisk("disk3");
    named.volumeName = "WORK";
    show({externalDisk("disk2", {{.identifier = "disk2s1"}}), named});
    EXPECT_EQ(changes, 1);
}

TEST_F(DiskRowsModelTest, WalksOverDisksAndTheirOpenPartitions)
{
    show({externalDisk("disk2", {{.identifier = "disk2s1"}, {.identifier = "disk2s3"}}), externalDisk("disk3")},
         {"disk2"});

    EXPECT_EQ(neighbour("disk2", 1), "disk2s1");
    EXPECT_EQ(neighbour("disk2s3", 1), "disk3");
    EXPECT_EQ(neighbour("disk3", 1), "disk3");
    EXPECT_EQ(neighbour("disk3", -1), "disk2s3");
    EXPECT_EQ(neighbour("disk3", -100), "disk2");
    EXPECT_EQ(neighbour("gone", 1), "disk2");
    EXPECT_EQ(model.indexOf(QStringLiteral("disk2s3")), 0);
    EXPECT_EQ(model.indexOf(QStringLiteral("disk3")), 1);
    EXPECT_EQ(model.indexOf(QStringLiteral("gone")), -1);
}

TEST_F(DiskRowsModelTest, FindsRowsByWhatTheyBeginWithInAnyCase)
{
    show({externalDisk("disk2"), externalDisk("disk3"), externalDisk("disk4")});

    EXPECT_EQ(find("disk2", "d", true), "disk3");
    EXPECT_EQ(find("disk4", "d", true), "disk2");
    EXPECT_EQ(find("disk2", "DISK DISK4", false), "disk4");
    EXPECT_EQ(find("disk3", "disk3", false), "disk3");
    EXPECT_EQ(find("disk2", "x", true), "");
}

TEST_F(DiskRowsModelTest, ShowsThePartitionsOfAnOpenDiskWithSeveralAlone)
{
    show({externalDisk("disk2", {{.identifier = "disk2s1"}}),
          externalDisk("disk3", {{.identifier = "disk3s1"}, {.identifier = "disk3s2"}})},
         {"disk2", "disk3"});

    EXPECT_TRUE(model.row(0).partitions().empty());
    EXPECT_EQ(model.row(1).partitions().size(), 2);
    EXPECT_FALSE(model.row(0).isExpanded());
    EXPECT_TRUE(model.row(1).isExpanded());
}

} // namespace
} // namespace brindle
