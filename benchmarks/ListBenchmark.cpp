// `brindlectl list` over the bare start of the same command lines, with tools that answer at once and tools that take
// 20 ms, at 8, 32 and 128 disks; beside it brindlectl's own CPU time and peak memory.

#include "Compare.h"
#include "Spawn.h"
#include "support/SimulatedMachine.h"

#include <fmt/format.h>

#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

namespace brindle {
namespace {

constexpr double kAllowedRatio = 1.15;
constexpr long kAllowedKilobytes = 16 * 1024;

struct Usage {
    double cpuMs = 0; ///< The process's own, without the tools that it started.
    /// Counts this program's memory too, which the other shared until it was started: an upper bound.
    long peakKilobytes = 0;
};

/// Milliseconds that the one thread of a process that has ended, but was not waited for yet, has had of a CPU.
double cpuMillisecondsOf(pid_t process)
{
    std::ifstream file(fmt::format("/proc/{}/schedstat", process));
    double nanoseconds = 0;
    file >> nanoseconds;
    return nanoseconds / 1e6;
}

/// Runs \a words with standard output thrown away.
Usage run(const std::vector<std::string> &words)
{
    const pid_t process = start(words);
    siginfo_t info{};
    waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOWAIT);
    const double cpuMs = cpuMillisecondsOf(process);
    rusage usage{};
    wait4(process, nullptr, 0, &usage);
    if (info.si_code != CLD_EXITED || info.si_status != 0)
        std::abort();
    return {cpuMs, usage.ru_maxrss};
}

void fill(SimulatedMachine &machine, int disks, const std::string &delay)
{
    const std::string efi = "   Whole: No\n   Volume Name: EFI\n   Mount Point: /Volumes/EFI\n";
    std::string list;
    for (int i = 0; i < disks; ++i) {
        const std::string identifier = fmt::format("disk{}", i);
        list += fmt::format("/dev/{0} (internal, physical):\n   0: GUID_partition_scheme *500.3 GB {0}\n"
                            "   1: EFI EFI 209.7 MB {0}s1\n\n",
                            identifier);
        machine.answer("diskutil", "info " + identifier,
                       {.standardOutput = "   Whole: Yes\n   Device / Media Name: A Disk\n", .delay = delay});
        machine.answer("diskutil", "info " + identifier + "s1", {.standardOutput = efi, .delay = delay});
    }
    machine.answer("diskutil", "info /", {.standardOutput = "   Part of Whole: disk0\n", .delay = delay});
    machine.answer("df", "-k", {.standardOutput = "/dev/disk0s1 1000 10 990 1% /Volumes/EFI\n", .delay = delay});
    machine.answer("nvram", "4D1FDA02-38C7-4A6A-9CC6-4BCCA8B30102:opencore-version", {.status = 1, .delay = delay});
    for (const char *name : {"Clover.Version", "clover-version", "clover.revision", "Clover.Revision"})
        machine.answer("nvram", name, {.status = 1, .delay = delay});
    machine.answer("diskutil", "list", {.standardOutput = list, .delay = delay});
    machine.answer("diskutil", "list physical", {.standardOutput = list, .delay = delay});
}

void compareAt(int disks, const std::string &delay, int rounds)
{
    SimulatedMachine machine;
    fill(machine, disks, delay);
    const std::string root = machine.root().string();
    setenv("BRINDLE_TOOL_ROOT", root.c_str(), 1);
    setenv("XDG_CONFIG_HOME", root.c_str(), 1);

    compare(
        fmt::format("list of {} disks, tools {}", disks, delay == "0" ? "at once" : "of " + delay + " ms"), rounds,
        kAllowedRatio,
        [&] {
            run({BRINDLECTL, "list", "--json"});
        },
        [&] {
            run({BARE_LIST, root, std::to_string(disks)});
        });
}

void reportOwnCost(int disks)
{
    SimulatedMachine machine;
    fill(machine, disks, "0");
    setenv("BRINDLE_TOOL_ROOT", machine.root().c_str(), 1);
    std::vector<double> cpuMs;
    long peakKilobytes = 0;
    for (int round = 0; round < 11; ++round) {
        const Usage usage = run({BRINDLECTL, "list", "--json"});
        cpuMs.push_back(usage.cpuMs);
        peakKilobytes = std::max(peakKilobytes, usage.peakKilobytes);
    }
    fmt::print("brindlectl's own, {:>3} disks: {:>6.1f} ms of CPU, {:.1f} MB at most, allowed {} MB  {}\n", disks,
               median(std::move(cpuMs)), static_cast<double>(peakKilobytes) / 1024, kAllowedKilobytes / 1024,
               verdict(peakKilobytes <= kAllowedKilobytes));
}

} // namespace
} // namespace brindle

/// Without arguments all of it; a number of disks measures that alone, with tools that answer at once.
int main(int count, char **words)
{
    using namespace brindle;
    if (count > 1) {
        compareAt(std::stoi(words[1]), "0", 31);
        return verdictStatus();
    }
    for (const int disks : {8, 32, 128}) {
        compareAt(disks, "0", 31);
        compareAt(disks, "20", disks > 32 ? 5 : 11);
    }
    for (const int disks : {0, 8, 32, 128})
        reportOwnCost(disks);
    return verdictStatus();
}
