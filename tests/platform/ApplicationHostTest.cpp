#include "platform/ApplicationHost.h"

#include "support/FakeApplicationHost.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindle {
namespace {

using testing::ElementsAre;

class ApplicationHostTest : public testing::Test, protected ApplicationDelegate {
protected:
    ApplicationHostTest() { host.setDelegate(this); }

    void applicationDidFinishLaunching() override { journal.emplace_back("did finish launching"); }
    bool applicationShouldHandleReopen(bool hasVisibleWindows) override
    {
        journal.push_back(fmt::format("reopen, visible: {}", hasVisibleWindows));
        return false;
    }
    bool applicationShouldTerminateAfterLastWindowClosed() override { return endsWithItsWindow; }
    bool applicationShouldTerminate() override { return isDone; }
    void applicationWillTerminate() override { journal.emplace_back("will terminate"); }

    std::vector<std::string> journal;
    bool endsWithItsWindow = true;
    bool isDone = true;
    FakeApplicationHost host{journal};
};

TEST_F(ApplicationHostTest, TellsTheDelegateThatTheLaunchIsFinished)
{
    host.finishLaunching();

    EXPECT_THAT(journal, ElementsAre("did finish launching"));
}

TEST_F(ApplicationHostTest, ComesToTheFrontBeforeTheDelegateHandlesASecondStart)
{
    host.reopen(true);
    host.reopen(false);

    EXPECT_THAT(journal, ElementsAre("activate", "reopen, visible: true", "activate", "reopen, visible: false"));
}

TEST_F(ApplicationHostTest, EndsWithItsLastWindowWhereTheDelegateSaysSo)
{
    host.lastWindowClosed();

    EXPECT_THAT(journal, ElementsAre("will terminate", "quit"));
}

TEST_F(ApplicationHostTest, GoesOnWithoutWindowsWhereTheDelegateSaysSo)
{
    endsWithItsWindow = false;

    host.lastWindowClosed();

    EXPECT_THAT(journal, ElementsAre());
}

TEST_F(ApplicationHostTest, EndsByItselfAloneWithoutADelegate)
{
    host.setDelegate(nullptr);

    host.finishLaunching();
    host.reopen(false);
    host.lastWindowClosed();
    EXPECT_THAT(journal, ElementsAre("activate"));

    host.terminate();
    EXPECT_THAT(journal, ElementsAre("activate", "quit"));
}

TEST_F(ApplicationHostTest, EndsOnceHoweverOftenItIsAskedTo)
{
    host.terminate();
    host.terminate();
    host.lastWindowClosed();

    EXPECT_THAT(journal, ElementsAre("will terminate", "quit"));
}

TEST_F(ApplicationHostTest, EndsOnlyWhenTheDelegateLetsIt)
{
    isDone = false;
    host.terminate();
    host.lastWindowClosed();
    EXPECT_THAT(journal, ElementsAre());

    isDone = true;
    host.terminate();

    EXPECT_THAT(journal, ElementsAre("will terminate", "quit"));
}

} // namespace
} // namespace brindle
