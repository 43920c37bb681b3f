// The copy of an EFI folder, flushed, over `cp -a` and `rsync -a`, each with one `sync -f`: wall time, CPU time and
// system calls; then copy, flush and verification over `rsync -a`, `sync -f` and `rsync -anc`. On a fresh ext4 of a
// loop device, which is read past the memory of the machine.

#include "Spawn.h"
#include "Verdict.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace brindle {
namespace {

namespace fs = std::filesystem;

constexpr int kRounds = 15;

using Words = std::vector<std::string>;
using Programs = std::vector<Words>; ///< One after the other.

/// What one run took, or the least of several.
struct Cost {
    double wallMs = std::numeric_limits<double>::infinity();
    double cpuMs = std::numeric_limits<double>::infinity();
    double calls = std::numeric_limits<double>::infinity(); ///< Of the kernel.

    void keepLess(const Cost &other)
    {
        wallMs = std::min(wallMs, other.wallMs);
        cpuMs = std::min(cpuMs, other.cpuMs);
        calls = std::min(calls, other.calls);
    }
};

double millisecondsOf(const timeval &time)
{
    return 1000.0 * static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1000.0;
}

/// Runs \a words with what they print thrown away; the CPU time of the process and of what it waited for.
double run(const Words &words)
{
    const pid_t process = start(words);
    int status = 0;
    rusage usage{};
    if (wait4(process, &status, 0, &usage) != process || status != 0)
        throw std::runtime_error(words.front() + " failed");
    return millisecondsOf(usage.ru_utime) + millisecondsOf(usage.ru_stime);
}

Cost costOf(const Programs &programs)
{
    Cost cost{.cpuMs = 0};
    const auto start = std::chrono::steady_clock::now();
    for (const Words &words : programs)
        cost.cpuMs += run(words);
    cost.wallMs = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    return cost;
}

/// The number behind the "total" of `strace -c`: its column of calls.
double callsOf(const Words &words, const fs::path &folder)
{
    const fs::path summary = folder / "calls";
    Words traced{"strace", "-f", "-c", "-U", "calls,name", "-o", summary.string()};
    traced.insert(traced.end(), words.begin(), words.end());
    run(traced);
    std::ifstream file(summary);
    for (std::string line; std::getline(file, line);) {
        if (line.ends_with(" total"))
            return std::stod(line);
    }
    throw std::runtime_error("strace told no sum");
}

/// An ext4 of its own on a loop device, mounted while it lives.
class FreshFileSystem {
public:
    FreshFileSystem()
    {
        std::string name = (fs::temp_directory_path() / "brindle-copy-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("no folder can be made");
        m_folder = name;
        fs::create_directory(root());
        std::ofstream(image()).close();
        fs::resize_file(image(), 2ULL << 30);
        run({"mkfs.ext4", "-q", "-F", image().string()});
        // Past the memory of the machine: else the image's file would be a second cache beneath the device.
        run({"sh", "-c", R"sh(mount -t ext4 "$(losetup -f --show --direct-io=on "$0")" "$1")sh", image().string(),
             root().string()});
    }
    FreshFileSystem(const FreshFileSystem &) = delete;
    FreshFileSystem &operator=(const FreshFileSystem &) = delete;
    ~FreshFileSystem()
    {
        try {
            run({"sh", "-c", R"sh(node=$(findmnt -no SOURCE "$0"); umount "$0"; losetup -d "$node")sh",
                 root().string()});
            fs::remove_all(m_folder);
        } catch (const std::exception &error) {
            fmt::print(stderr, "{} is left: {}\n", m_folder.string(), error.what());
        }
    }

    [[nodiscard]] fs::path root() const { return m_folder / "root"; }
    [[nodiscard]] const fs::path &folder() const { return m_folder; } ///< Outside it.

private:
    [[nodiscard]] fs::path image() const { return m_folder / "image"; }

    fs::path m_folder;
};

/// Sizes as those of boot loaders' folders: most files are small, and few make up most of the bytes.
struct Sample {
    int files;
    std::uintmax_t bytes;
};

void write(const Sample &sample, const fs::path &folder)
{
    constexpr int kFilesOfAFolder = 40;
    std::minstd_rand random(1); // NOLINT(bugprone-random-generator-seed): each run copies the same
    std::vector<double> shares;
    double sum = 0;
    for (int file = 0; file < sample.files; ++file)
        sum += shares.emplace_back(std::lognormal_distribution<double>(0, 1.5)(random));
    std::string bytes;
    for (int file = 0; file < sample.files; ++file) {
        const fs::path parent = folder / fmt::format("folder {}", file / kFilesOfAFolder);
        fs::create_directories(parent);
        bytes.resize(
            static_cast<std::size_t>(shares[static_cast<std::size_t>(file)] / sum * static_cast<double>(sample.bytes)));
        std::ranges::generate(bytes, [&random] { return static_cast<char>(random()); });
        std::ofstream(parent / fmt::format("file {}.efi", file), std::ios::binary) << bytes;
    }
    sync();
}

void dropFromMemory(const fs::path &folder)
{
    for (const auto &entry : fs::recursive_directory_iterator(folder)) {
        const int file = entry.is_regular_file() ? open(entry.path().c_str(), O_RDONLY | O_CLOEXEC) : -1;
        if (file < 0)
            continue;
        posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
        close(file);
    }
}

/// One way to copy \a from to \a to.
struct Way {
    std::string name;
    Programs copy;
    Programs verify; ///< Empty: it does not.
    Cost cost;
};

void measure(Way &way, const fs::path &target)
{
    Cost cost = costOf(way.copy);
    if (!way.verify.empty()) {
        dropFromMemory(target);
        const Cost more = costOf(way.verify);
        cost.wallMs += more.wallMs;
        cost.cpuMs += more.cpuMs;
    }
    way.cost.keepLess(cost);
    fs::remove_all(target);
    run({"sync", "-f", target.parent_path().string()});
}

void print(const std::string &what, const char *unit, const Way &ours, double Cost::*figure,
           const std::vector<Way> &peers, double allowed)
{
    const auto &best = *std::ranges::min_element(peers, {}, [&](const Way &way) { return way.cost.*figure; });
    const double ratio = ours.cost.*figure / (best.cost.*figure);
    fmt::print("{:<34} {:>9.1f} {:<5} {:>9.1f} {:<5} {:<10} {:>5.2f} x  allowed {:.2f} x  {}\n", what,
               ours.cost.*figure, unit, best.cost.*figure, unit, best.name, ratio, allowed, verdict(ratio <= allowed));
    std::fflush(stdout);
}

/// The least of so many runs in turns. What is left in memory of a former target goes before each.
void compare(Way &ours, std::vector<Way> &peers, const fs::path &target)
{
    for (int round = 0; round < kRounds; ++round) {
        measure(ours, target);
        for (Way &peer : peers)
            measure(peer, target);
    }
}

void countCalls(Way &way, const fs::path &target, const fs::path &folder)
{
    double calls = 0;
    for (const Words &words : way.copy)
        calls += callsOf(words, folder);
    way.cost.calls = calls;
    fs::remove_all(target);
}

void compareAt(const Sample &sample, const std::string &brindlectl, const std::string &copyFolder)
{
    constexpr double kAllowedOfProcessor = 1.05;
    constexpr double kAllowedOfWall = 1.10;
    constexpr double kAllowedOfVerification = 0.75;

    const FreshFileSystem fileSystem;
    const std::string from = (fileSystem.root() / "EFI").string();
    const std::string to = (fileSystem.root() / "copy").string();
    write(sample, from);
    const Words flush{"sync", "-f", fileSystem.root().string()};
    const Words rsync{"rsync", "-a", from + "/", to};
    const std::string what = fmt::format("{} files, {} MB", sample.files, sample.bytes / 1'000'000);

    Way copy{"ours", {{copyFolder, from, to}}, {}, {}};
    std::vector<Way> copies{{"cp -a", {{"cp", "-a", from, to}, flush}, {}, {}}, {"rsync -a", {rsync, flush}, {}, {}}};
    compare(copy, copies, to);
    countCalls(copy, to, fileSystem.folder());
    for (Way &peer : copies)
        countCalls(peer, to, fileSystem.folder());
    print("copy of " + what + ", wall", "ms", copy, &Cost::wallMs, copies, kAllowedOfWall);
    print("  its CPU time", "ms", copy, &Cost::cpuMs, copies, kAllowedOfProcessor);
    print("  its system calls", "calls", copy, &Cost::calls, copies, kAllowedOfProcessor);

    Way verified{"ours", copy.copy, {{brindlectl, "verify", from, to}}, {}};
    std::vector<Way> peers{{"rsync -anc", {rsync, flush}, {{"rsync", "-anc", from + "/", to}}, {}}};
    compare(verified, peers, to);
    print("copy and verification, wall", "ms", verified, &Cost::wallMs, peers, kAllowedOfVerification);
}

} // namespace
} // namespace brindle

int main()
{
    using namespace brindle;
    if (geteuid() != 0) {
        fmt::print("copies: not measured, only root can mount a fresh file system\n");
        return 0;
    }
    for (const Sample &sample : {Sample{600, 58'000'000}, Sample{4000, 153'000'000}})
        compareAt(sample, BRINDLECTL, COPY_FOLDER);
    return verdictStatus();
}
