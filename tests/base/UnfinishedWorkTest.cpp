#include "base/UnfinishedWork.h"

#include "base/BlockOn.h"
#include "support/Patience.h"

#include <QTimer>

#include <gtest/gtest.h>

#include <optional>

namespace brindle {
namespace {

using Piece = UnfinishedWork::Piece;

class UnfinishedWorkTest : public testing::Test {
protected:
    UnfinishedWorkTest()
    {
        QObject::connect(&work, &UnfinishedWork::isThereChanged, [this] { ++changes; });
    }

    UnfinishedWork work;
    int changes = 0;
};

TEST_F(UnfinishedWorkTest, IsThereFromTheFirstPieceToTheEndOfTheLast)
{
    EXPECT_FALSE(work.isThere());
    std::optional<Piece> first(std::in_place, work);
    std::optional<Piece> second(std::in_place, work);
    first.reset();
    EXPECT_TRUE(work.isThere());
    EXPECT_EQ(changes, 1);

    second.reset();

    EXPECT_FALSE(work.isThere());
    EXPECT_EQ(changes, 2);
}

TEST_F(UnfinishedWorkTest, TellsOnceThatTheProcessEndsWithIt)
{
    int told = 0;
    QObject::connect(&work, &UnfinishedWork::endsProcessChanged, [&] { ++told; });
    EXPECT_FALSE(work.endsProcess());

    work.endProcessWithIt();
    work.endProcessWithIt();

    EXPECT_TRUE(work.endsProcess());
    EXPECT_EQ(told, 1);
}

TEST_F(UnfinishedWorkTest, HasAnEndThatCanBeAwaited)
{
    std::optional<Piece> piece(std::in_place, work);
    QTimer::singleShot(0, [&] { piece.reset(); });

    blockOn(work.end(), kPatience);

    EXPECT_FALSE(work.isThere());
}

TEST_F(UnfinishedWorkTest, HasEndedWhereThereIsNone)
{
    blockOn(work.end(), kPatience);

    EXPECT_EQ(changes, 0);
}

TEST_F(UnfinishedWorkTest, MayBeGoneBeforeItsPieces)
{
    std::optional<UnfinishedWork> other(std::in_place);
    const Piece piece(*other);

    other.reset();
}

} // namespace
} // namespace brindle
