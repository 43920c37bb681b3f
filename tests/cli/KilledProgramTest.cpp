// brindlectl is killed at each tool that it starts for a partition, on a simulated machine with the real tools.

#include "cli/ActingFixture.h"
#include "platform/linux/PlistUserDefaults.h"
#include "support/WaitUntil.h"

#include <csignal>
#include <string>
#include <vector>

namespace brindle {
namespace {

namespace fs = std::filesystem;

struct Act {
    const char *name;
    std::vector<std::string> arguments;
    bool mounts; ///< What it leaves: the partition mounted, or without files.
};

class KilledProgram : public ActingFixture, public testing::WithParamInterface<Act> {
protected:
    KilledProgram()
    {
        for (const char *tool : {"/usr/sbin/diskutil", "/usr/bin/sudo"})
            wrap(root() + tool);
        giveAllToOrdinaryUser();
        run({"list"}); // the first run's settings
    }

    /// Runs the act and kills the program when it has started tools for disk2s1 \a step times; whether it was.
    bool isKilledAt(int step)
    {
        auto variables = environment();
        variables["KILL_AT"] = std::to_string(step);
        fs::remove(home() + "/steps");
        fs::remove(home() + "/ended");
        std::vector<std::string> words{"-c", "\"$0\" \"$@\"; exit $?", BRINDLECTL};
        words.insert(words.end(), GetParam().arguments.begin(), GetParam().arguments.end());
        words.emplace_back("--password-stdin");
        const int status = runProgram("/bin/sh", words, std::string(kAdminPassword) + "\n", variables).status;
        EXPECT_TRUE(status == 0 || status == 128 + SIGKILL) << status;
        return status != 0;
    }

    /// Whether the last tool that was started is the one that acts.
    [[nodiscard]] bool hasActed() const { return contentsOf(home() + "/steps").ends_with("act\n"); }

    /// Waits for the end of the tool that acts, which nobody reads any more.
    void awaitTool() const
    {
        waitUntil([&] { return fs::exists(home() + "/ended"); });
    }

    void expectDone()
    {
        if (!GetParam().mounts)
            EXPECT_EQ(runWithPassword({"mount", "disk2s1"}).status, 0);
        const nlohmann::json now = partition("disk2s1");
        ASSERT_TRUE(now.at("isMounted"));
        EXPECT_EQ(fs::exists(now.at("mountPoint").get<std::string>() + "/EFI"), GetParam().mounts);
    }

    void expectSettingsWhole() const
    {
        const PlistUserDefaults settings(home() + "/config/brindle/com.orlane.Brindle.plist");
        EXPECT_TRUE(settings.boolForKey("PreferencesInitialized"));
        EXPECT_TRUE(settings.object("DiskManager.PersistedDisks"));
    }

private:
    /// Lets the tool note that it was started for disk2s1, by the program or, to act, by its sudo, and kill the program
    /// when it is its turn; two that start at once may both believe so. The one that acts notes its end.
    static void wrap(const fs::path &tool)
    {
        fs::rename(tool, tool.string() + ".real");
        writeFile(tool, R"sh(#!/bin/sh
case "$*" in *disk2s1*) ;; *) exec "$0.real" "$@" ;; esac
step=${0##*/}
case $1 in mount|eraseVolume) step=act ;; *) echo $PPID > "$HOME/program" ;; esac
echo $step >> "$HOME/steps"
[ "$(wc -l < "$HOME/steps")" -lt "${KILL_AT:-1000}" ] || kill -KILL "$(cat "$HOME/program")"
[ $step = act ] || exec "$0.real" "$@"
"$0.real" "$@"
status=$?
: > "$HOME/ended"
exit $status
)sh");
        fs::permissions(tool, fs::perms(0755));
    }
};

TEST_P(KilledProgram, LeavesItsSettingsWholeAndTheToolToItsEnd)
{
    bool isActKilled = false;
    int step = 1;
    for (; isKilledAt(step) && step < 20; ++step) {
        expectSettingsWhole();
        if (hasActed()) {
            isActKilled = true;
            awaitTool();
            expectDone();
            EXPECT_EQ(runWithPassword({"unmount", "disk2s1"}).status, 0);
        }
    }

    EXPECT_TRUE(isActKilled);
    EXPECT_GE(step, 3);
    expectDone();
    expectSettingsWhole();
}

INSTANTIATE_TEST_SUITE_P(Amid, KilledProgram,
                         testing::Values(Act{"AMount", {"mount", "disk2s1"}, true},
                                         Act{"AnErase", {"erase-efi", "disk2s1", "--confirm", "SYSTEM"}, false}),
                         [](const auto &row) { return std::string(row.param.name); });

} // namespace
} // namespace brindle
