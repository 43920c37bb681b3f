#include "detectors/WordSearch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string_view>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::array<std::string_view, 4> kFirstList{"ext2", "xfs", "xfs filesystem", "ex"};
constexpr std::array<std::string_view, 2> kSecondList{"f2fs", "EX"};

const WordSearch &words()
{
    static const WordSearch search{kFirstList, kSecondList};
    return search;
}

TEST(WordSearch, FindsTheWordsOfAllListsWhereverTheyStand)
{
    EXPECT_THAT(words().wordsIn("f2fs and xfs"), ElementsAre("f2fs", "xfs"));
    EXPECT_THAT(words().wordsIn("anf2fsn"), ElementsAre("f2fs"));
}

TEST(WordSearch, FindsWordsWithinWordsAndOverEachOther)
{
    EXPECT_THAT(words().wordsIn("ext2xfs filesystem"), ElementsAre("ex", "ext2", "xfs", "xfs filesystem"));
    EXPECT_THAT(words().wordsIn("exfs"), ElementsAre("ex", "xfs"));
}

TEST(WordSearch, TellsCharactersApartThatShareABucket)
{
    EXPECT_THAT(words().wordsIn("ex"), ElementsAre("ex"));
    EXPECT_THAT(words().wordsIn("EX"), ElementsAre("EX"));
    EXPECT_THAT(words().wordsIn("eX %8"), IsEmpty());
}

TEST(WordSearch, FindsAWordOnceHoweverOftenItStands)
{
    EXPECT_THAT(words().wordsIn("exexex"), ElementsAre("ex"));
}

TEST(WordSearch, FindsNothingInATextThatIsTooShort)
{
    EXPECT_THAT(words().wordsIn(""), IsEmpty());
    EXPECT_THAT(words().wordsIn("e"), IsEmpty());
    EXPECT_THAT(words().wordsIn("xf"), IsEmpty());
    EXPECT_THAT(words().wordsIn("xfs filesyste"), ElementsAre("xfs"));
}

} // namespace
} // namespace brindle
