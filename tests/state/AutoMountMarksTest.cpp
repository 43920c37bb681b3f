#include "state/AutoMountMarks.h"

#include "base/DefaultsKeys.h"
#include "support/MemoryUserDefaults.h"

#include <gmock/gmock.h>

#include <string>

namespace brindle {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr const char *kKey = DefaultsKeys::kAutoMountDiskUUIDs;

TEST(AutoMountMarks, AreADictionaryFromMediaUUIDToName)
{
    MemoryUserDefaults defaults;

    setAutoMountMarks(defaults, {{"UUID-1", "Stick"}, {"UUID-2", ""}});

    EXPECT_EQ(defaults.object(kKey), PropertyValue::Dictionary({{"UUID-1", "Stick"}, {"UUID-2", ""}}));
    EXPECT_THAT(autoMountMarks(defaults), ElementsAre(Pair("UUID-1", "Stick"), Pair("UUID-2", "")));
}

struct NoMarksCase {
    const char *name;
    std::optional<PropertyValue> stored;
};

class AutoMountMarksOf : public testing::TestWithParam<NoMarksCase> {};

TEST_P(AutoMountMarksOf, AreNone)
{
    MemoryUserDefaults defaults;
    if (GetParam().stored)
        defaults.set(kKey, *GetParam().stored);

    EXPECT_THAT(autoMountMarks(defaults), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(AutoMountMarks, AutoMountMarksOf,
                         testing::Values(NoMarksCase{"NothingStored", {}},
                                         NoMarksCase{"AText", PropertyValue("UUID-1")},
                                         NoMarksCase{"AnArray", PropertyValue::Array({"UUID-1"})},
                                         NoMarksCase{"ADictionaryWithANumber",
                                                     PropertyValue::Dictionary({{"UUID-1", "Stick"}, {"UUID-2", 7}})}),
                         [](const auto &row) { return std::string(row.param.name); });

} // namespace
} // namespace brindle
