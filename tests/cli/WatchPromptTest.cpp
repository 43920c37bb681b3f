// The password is asked for in a real terminal while `watch --automount` runs on a simulated machine.

#include "cli/ActingFixture.h"
#include "cli/TerminalProgram.h"

#include <csignal>

namespace brindle {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char *kPrompt = "Administrator Password: ";
constexpr const char *kTitle = "Administrator Access Required";

/// Two marked disks lie on the shelf.
class WatchPrompt : public ActingFixture {
protected:
    WatchPrompt()
    {
        stick = plugIn("disk7");
        for (const std::string &disk : {stick, external})
            EXPECT_EQ(run({"automount", "add", disk}).status, 0);
        for (const std::string &disk : {stick, external})
            plug("out", disk);
    }

    std::string plugIn(const std::string &disk) { return plug("in", disk); }

    /// `watch --automount`, once it has told its first list.
    TerminalProgram watch()
    {
        return {BRINDLECTL, {"watch", "--automount", "--verbose"}, environment(), becomeOrdinaryUser};
    }

    std::string stick;
    const std::string external = "disk4";

private:
    std::string plug(const char *direction, const std::string &disk)
    {
        const Outcome outcome = runProgram(BRINDLE_MACHINE, {direction, root(), disk}, "", environment());
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        return outcome.output.substr(0, outcome.output.find('\n'));
    }
};

TEST_F(WatchPrompt, AsksForOnePasswordAfterTheOther)
{
    TerminalProgram watching = watch();
    watching.awaitText("✅ DiskEventMonitor started");
    watching.awaitText("disk0");
    const std::string first = plugIn(stick);
    const std::string second = plugIn(external);

    watching.awaitText(kPrompt);
    watching.type(std::string(kAdminPassword) + "\n");
    watching.awaitText(kPrompt, 2);
    watching.type(std::string(kAdminPassword) + "\n");

    watching.awaitText("   🏎️ ✅ Auto-mount successful for ", 2);
    EXPECT_THAT(watching.shown(), Not(HasSubstr(std::string(kPrompt) + kTitle)));
    watching.signal(SIGTERM);
    EXPECT_EQ(watching.end(), 0);
    EXPECT_TRUE(isMounted(first + "s1"));
    EXPECT_TRUE(isMounted(second + "s1"));
}

TEST_F(WatchPrompt, IsTakenBackWhenTheWatchEnds)
{
    TerminalProgram watching = watch();
    watching.awaitText("disk0");
    const std::string first = plugIn(stick);
    plugIn(external);
    watching.awaitText(kPrompt);
    watching.type("half a pass");

    watching.signal(SIGTERM);

    EXPECT_EQ(watching.end(), 0);
    EXPECT_THAT(watching.shown(), HasSubstr("   🏎️ ❌ Auto-mount failed: Administrator password required"));
    EXPECT_THAT(watching.shown(), Not(HasSubstr("goes on")));
    EXPECT_FALSE(isMounted(first + "s1"));
}

} // namespace
} // namespace brindle
