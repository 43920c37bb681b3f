// brindlectl killed while a tool runs that it has started: what it leaves behind.

#include "cli/ComputerFixture.h"
#include "support/FileTree.h"
#include "support/Patience.h"
#include "support/Sanitizer.h"
#include "support/ToolGate.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <sys/prctl.h>
#include <sys/wait.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

struct ActionCase {
    const char *name;
    Arguments arguments;
    std::string acting;     ///< What its privileged tool is called with.
    bool isFollowedByAScan; ///< Whose tools are those of the scan that it begins with.
};

/// How an action went whose program was killed while a tool of it was held at its start.
struct KilledAction {
    std::vector<std::string> calls;  ///< Of all tools up to the held one.
    std::optional<pid_t> held;       ///< Nothing where the program came to its own end.
    std::map<pid_t, int> toolEnds{}; ///< As waitpid(2) tells them.
};

class ProgramKilledAtATool : public Computer, public testing::WithParamInterface<ActionCase> {
protected:
    ProgramKilledAtATool()
    {
        // Tools whose program is gone become this process's own, so that it learns of their end.
        ::prctl(PR_SET_CHILD_SUBREAPER, 1);
        for (const char *disk : {"disk2", "disk4", "disk5", "disk6"}) // a scan is short without them
            runMachine({"out", root(), disk});
        fs::rename(root(), pristine());
        renewMachine();
        EXPECT_EQ(run({"settings", "set", "ShowDiskSpaceIndicator", "true"}).status, 0);
    }
    ~ProgramKilledAtATool() override { ::prctl(PR_SET_CHILD_SUBREAPER, 0); }

    /// Gives the machine anew.
    void renewMachine() const
    {
        fs::remove_all(root());
        runMachine({"new", root(), "--from", pristine()});
    }

    /// Begins the action on the machine anew and kills the program at the \a count-th tool that \a counts.
    KilledAction killAtTool(std::size_t count, const std::function<bool(const KilledAction &)> &counts)
    {
        renewMachine();
        KilledAction action;
        QProcess program;
        std::size_t counted = 0;
        {
            const ToolGate gate(root());
            startThere(program, GetParam().arguments);
            EXPECT_TRUE(program.waitForBytesWritten());
            while (auto tool = gate.next(static_cast<pid_t>(program.processId()))) {
                action.calls.push_back(tool->call);
                counted += counts(action) ? 1 : 0;
                if (counted < count)
                    continue;
                program.kill();
                EXPECT_TRUE(program.waitForFinished(kPatienceMilliseconds));
                action.held = tool->pid;
                break;
            }
        }
        EXPECT_TRUE(program.state() == QProcess::NotRunning || program.waitForFinished(kPatienceMilliseconds));
        int status = 0;
        for (pid_t tool = 0; (tool = ::waitpid(-1, &status, 0)) > 0;)
            action.toolEnds[tool] = status;
        return action;
    }

    /// Whether the action's own tools have begun: the first one is sudo.
    static bool isActing(const KilledAction &action)
    {
        return std::ranges::any_of(action.calls, [](const std::string &call) { return call.starts_with("sudo "); });
    }

    void expectWholeSettings()
    {
        EXPECT_EQ(run({"settings", "get", "ShowDiskSpaceIndicator"}).output, "true\n");
        // The program goes on while its tool is held: what it was writing when it was killed goes with the next change.
        for (const char *value : {"false", "true"})
            EXPECT_EQ(run({"settings", "set", "ShowDiskSpaceIndicator", value}).status, 0);
        EXPECT_THAT(settingsFiles(), ElementsAre("com.orlane.Brindle.plist", "com.orlane.Brindle.plist.lock"));
    }

    void expectList()
    {
        const Outcome list = runThere({"list", "--json"}, "");
        EXPECT_EQ(list.status, 0);
        EXPECT_THAT(list.error, IsEmpty());
        EXPECT_THAT(list.identifiers(), ElementsAre("disk0", "disk3"));
    }

    /// The machine file and the files of what is mounted.
    [[nodiscard]] json state() const
    {
        json file = machineFile();
        blankDrawnNames(file);
        return {{"file", file}, {"mounted", mountedFiles()}};
    }

    [[nodiscard]] std::vector<std::string> settingsFiles() const
    {
        std::vector<std::string> files;
        for (const auto &[path, content] : treeOf(machine.root() / "config/brindle"))
            files.push_back(path);
        return files;
    }

private:
    /// Their content as a number: a failing test prints text alone.
    [[nodiscard]] json mountedFiles() const
    {
        json files = json::object();
        for (const auto &[path, content] : treeOf(fs::path(root()) / "Volumes"))
            files[path] = std::hash<std::string>{}(content);
        return files;
    }

    [[nodiscard]] std::string pristine() const { return machine.root() / "pristine"; }

    /// An erase draws new ones each time.
    static void blankDrawnNames(json &value)
    {
        for (const char *name : {"uuid", "content"}) {
            if (value.contains(name))
                value[name] = "";
        }
        if (value.is_structured())
            std::ranges::for_each(value, blankDrawnNames);
    }
};

TEST_P(ProgramKilledAtATool, ChangesNothingBeforeThePasswordIsUsed)
{
    constexpr std::size_t kStride = kIsSanitized ? 6 : 1; // where each process takes long to start
    const json before = state();

    for (std::size_t count = 1;; count += kStride) {
        const KilledAction action = killAtTool(count, [](const KilledAction &) { return true; });
        if (isActing(action))
            break;

        SCOPED_TRACE(fmt::format("killed at {}: {}", count, action.calls.back()));
        EXPECT_TRUE(action.held);
        EXPECT_EQ(state(), before);
        expectWholeSettings();
    }
}

TEST_P(ProgramKilledAtATool, LeavesTheMachineAsBeforeOrAfterTheActionWhoseToolEndsByItself)
{
    const json before = state();
    EXPECT_EQ(runThere(GetParam().arguments).status, 0);
    const json after = state();
    ASSERT_NE(before, after);

    bool isOver = false;
    for (std::size_t count = 1; !isOver; ++count) {
        const KilledAction action = killAtTool(count, isActing);

        SCOPED_TRACE(fmt::format("killed at {}: {}", count, action.calls.back()));
        const bool isPrivileged = action.calls.back() == GetParam().acting;
        const bool hasActed = std::ranges::find(action.calls, GetParam().acting) != action.calls.end();
        EXPECT_EQ(state(), hasActed ? after : before);
        if (isPrivileged) {
            ASSERT_TRUE(action.held);
            EXPECT_TRUE(WIFEXITED(action.toolEnds.at(*action.held))); // with a complaint that nobody reads its output
        }
        expectWholeSettings();
        expectList();
        isOver = !action.held || (GetParam().isFollowedByAScan && hasActed && !isPrivileged);
    }
}

INSTANTIATE_TEST_SUITE_P(Its, ProgramKilledAtATool,
                         testing::Values(ActionCase{"Mount", {"mount", "disk0s1"}, "diskutil mount disk0s1", false},
                                         ActionCase{"EraseOfAnEFIPartition",
                                                    {"erase-efi", "disk3s1", "--confirm", "OPENCORE"},
                                                    "diskutil eraseVolume FAT32 OPENCORE disk3s1",
                                                    true},
                                         ActionCase{"EraseOfADisk",
                                                    {"erase-disk", "disk3", "--format", "ExFAT", "--confirm",
                                                     "Install macOS Sonoma"},
                                                    "diskutil eraseDisk ExFAT Install macOS Sonoma GPT disk3",
                                                    true}),
                         [](const auto &row) { return row.param.name; });

} // namespace
} // namespace brindle
