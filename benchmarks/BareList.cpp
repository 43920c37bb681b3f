// bare_list ROOT DISKS: starts the command lines of one `brindlectl list` on a simulated machine and reads what they
// print, in the same order of dependence: the two lists one after the other, then the disks at most three at a time,
// each its own info and then its EFI partition's. The least that any program with this task has to do.

#include <sys/wait.h>

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <map>
#include <string>
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

void run(const std::string &tool, std::vector<std::string> arguments)
{
    const Child child = start(tool, std::move(arguments));
    waitpid(child.process, nullptr, 0);
    readOutput(child);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    const std::string diskutil = std::string(argv[1]) + "/usr/sbin/diskutil";
    const int disks = std::atoi(argv[2]);
    run(diskutil, {"list", "physical"});
    run(diskutil, {"list"});

    struct Step {
        Child child;
        std::string partition; // asked about next; empty after that
    };
    std::map<pid_t, Step> running;
    const auto begin = [&](const std::string &identifier, const std::string &partition) {
        const Child child = start(diskutil, {"info", identifier});
        running[child.process] = {child, partition};
    };
    int next = 0;
    const auto beginNextDisk = [&] {
        if (next < disks) {
            const std::string identifier = "disk" + std::to_string(next++);
            begin(identifier, identifier + "s1");
        }
    };
    for (int i = 0; i < 3; ++i)
        beginNextDisk();
    while (!running.empty()) {
        const pid_t process = waitpid(-1, nullptr, 0);
        const Step step = running.extract(process).mapped();
        readOutput(step.child);
        if (step.partition.empty())
            beginNextDisk();
        else
            begin(step.partition, "");
    }
}
