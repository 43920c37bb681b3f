// bare_list ROOT DISKS: starts the command lines of one `brindlectl list` on a simulated machine without a boot loader
// and reads what they print, in the same order of dependence: the questions about the boot, the lists one after the
// other, then the disks at most three at a time, each its own info and then its EFI partition's. The least that any
// program with this task has to do.

#include <sys/wait.h>

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

extern char **environ; // NOLINT

namespace {

struct Child {
    pid_t process = 0;
    int output = -1;
};

Child start(const std::string &tool, std::vector<std::string> arguments)
{
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0)
        std::abort();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
    std::vector<char *> argv{const_cast<char *>(tool.c_str())};
    for (std::string &argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    Child child{.output = pipe[0]};
    if (posix_spawn(&child.process, tool.c_str(), &actions, nullptr, argv.data(), environ) != 0)
        std::abort();
    posix_spawn_file_actions_destroy(&actions);
    close(pipe[1]);
    return child;
}

void readOutput(const Child &child)
{
    std::array<char, 65536> buffer{};
    while (read(child.output, buffer.data(), buffer.size()) > 0) {
    }
    close(child.output);
}

using CommandLine = std::vector<std::string>; ///< The tool's path, then its arguments.
using Chain = std::deque<CommandLine>;        ///< Each begins when the one before has ended.

/// Runs the chains, at most \a bound side by side.
void run(std::deque<Chain> chains, std::size_t bound)
{
    struct Step {
        Child child;
        Chain rest;
    };
    std::map<pid_t, Step> running;
    const auto begin = [&](Chain chain) {
        const CommandLine line = chain.front();
        chain.pop_front();
        const Child child = start(line.front(), {line.begin() + 1, line.end()});
        running[child.process] = {child, std::move(chain)};
    };
    while (!running.empty() || !chains.empty()) {
        while (!chains.empty() && running.size() < bound) {
            begin(std::move(chains.front()));
            chains.pop_front();
        }
        Step step = running.extract(waitpid(-1, nullptr, 0)).mapped();
        readOutput(step.child);
        if (!step.rest.empty())
            begin(std::move(step.rest));
    }
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    const std::string root = argv[1];
    const std::string diskutil = root + "/usr/sbin/diskutil";
    const std::string nvram = root + "/usr/sbin/nvram";
    run({{{diskutil, "info", "/"}},
         {{nvram, "4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:opencore-version"}},
         {{nvram, "Clover.Version"},
          {nvram, "clover-version"},
          {nvram, "clover.revision"},
          {nvram, "Clover.Revision"}}},
        3);
    run({{{diskutil, "list", "physical"}, {root + "/bin/df", "-k"}, {diskutil, "list"}}}, 1);
    std::deque<Chain> disks;
    for (int i = 0; i < std::atoi(argv[2]); ++i) {
        const std::string disk = "disk" + std::to_string(i);
        disks.push_back({{diskutil, "info", disk}, {diskutil, "info", disk + "s1"}});
    }
    run(std::move(disks), 3);
}
