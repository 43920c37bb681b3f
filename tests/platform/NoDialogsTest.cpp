#include "platform/NoDialogs.h"

#include "base/BlockOn.h"

#include <gtest/gtest.h>

namespace brindle {
namespace {

TEST(NoDialogs, EndAtOnceAsIfTheyHadBeenCancelled)
{
    NoDialogs dialogs;

    EXPECT_EQ(blockOn(dialogs.alert({.buttons = {"Erase", "Cancel"}})), 1U);
    EXPECT_EQ(blockOn(dialogs.securePrompt({})), std::nullopt);
    EXPECT_EQ(blockOn(dialogs.textPrompt({})), std::nullopt);
    EXPECT_EQ(blockOn(dialogs.savePanel({})), std::nullopt);
}

} // namespace
} // namespace brindle
