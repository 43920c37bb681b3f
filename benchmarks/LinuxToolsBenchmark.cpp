// `diskutil list` and `diskutil info` of one disk over lsblk telling as much of the same devices: at 10, 34 and 200
// block devices where loop devices can be attached, else at what the machine has; without udev and, where a private
// udevd can run, with it.

#include "Compare.h"
#include "Spawn.h"

#include <fmt/format.h>

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {
namespace {

constexpr double kAllowedRatio = 1.0;
constexpr int kRounds = 41;

/// Runs \a words with what they print thrown away.
void run(const std::vector<std::string> &words)
{
    const pid_t process = start(words, true);
    int status = 0;
    if (waitpid(process, &status, 0) != process || status != 0)
        throw std::runtime_error(words.front() + " failed");
}

std::string firstLineOf(const std::string &command)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> pipe(popen(command.c_str(), "r"), pclose);
    std::array<char, 256> line{};
    if (!pipe || !std::fgets(line.data(), line.size(), pipe.get()))
        return {};
    return std::string(line.data()).substr(0, std::string_view(line.data()).find('\n'));
}

/// A loop device over a sparse file with a GPT of so many partitions, which the kernel has devices for.
class LoopDisk {
public:
    explicit LoopDisk(int partitions)
        : m_image(std::filesystem::temp_directory_path() / fmt::format("disk-{}-{}", getpid(), fmt::ptr(this)))
    {
        std::ofstream(m_image).close();
        std::filesystem::resize_file(m_image, 512U << 20);
        const std::filesystem::path table = m_image.string() + ".table";
        std::ofstream lines(table);
        lines << "label: gpt\n";
        for (int partition = 0; partition < partitions; ++partition)
            lines << "size=2048\n";
        lines.close();
        m_node = firstLineOf(
            fmt::format("sfdisk -q {0} <{0}.table && losetup -f --show {0} && rm {0}.table", m_image.string()));
        if (!m_node.empty())
            run({"partx", "-a", m_node});
    }
    LoopDisk(const LoopDisk &) = delete;
    LoopDisk &operator=(const LoopDisk &) = delete;
    ~LoopDisk()
    {
        // udev may still read a partition, which can't be taken out then.
        if (!m_node.empty())
            (void)firstLineOf(
                fmt::format("{{ udevadm settle; partx -d {0}; losetup -d {0}; }} >/dev/null 2>&1", m_node));
        std::error_code ignored;
        std::filesystem::remove(m_image, ignored);
    }

    [[nodiscard]] const std::string &node() const { return m_node; }

private:
    std::filesystem::path m_image;
    std::string m_node;
};

/// Whole disks with a size, and partitions: what both programs tell about.
int countOfDevices()
{
    return std::stoi(firstLineOf("lsblk -nrpo NAME | sort -u | wc -l"));
}

void compareHere(const std::string &disk, std::string_view how)
{
    const int devices = countOfDevices();
    compare(
        fmt::format("diskutil list, {} devices{}", devices, how), kRounds, kAllowedRatio,
        [] {
            run({DISKUTIL, "list"});
        },
        [] {
            run({"lsblk", "-J", "-O"});
        });
    compare(
        fmt::format("diskutil info, {} devices{}", devices, how), kRounds, kAllowedRatio,
        [&] {
            run({DISKUTIL, "info", disk});
        },
        [&] {
            run({"lsblk", "-J", "-O", disk});
        });
}

void compareWithLoopDisks(std::string_view how)
{
    // Two loop disks at most: the machine has few loop devices, and udev takes its time for each partition.
    const int here = countOfDevices();
    for (const int wanted : {10, 34, 200}) {
        const int partitions = wanted - here - (wanted > 100 ? 2 : 1);
        const LoopDisk first(wanted > 100 ? partitions / 2 : partitions);
        std::unique_ptr<LoopDisk> second;
        if (wanted > 100)
            second = std::make_unique<LoopDisk>(partitions - partitions / 2);
        if (!how.empty())
            run({"udevadm", "settle"});
        compareHere(first.node(), how);
    }
}

bool canAttachLoopDisks()
{
    return geteuid() == 0 && !LoopDisk(1).node().empty();
}

/// Runs this program again in a mount and network namespace of its own, whose udevd nothing else notices.
void compareWithUdev(const std::string &program)
{
    const std::string inside =
        fmt::format("mount -t tmpfs tmpfs /run && mkdir -p /run/udev && "
                    "{{ /lib/systemd/systemd-udevd >/dev/null 2>&1 & udevd=$!; "
                    "while ! [ -S /run/udev/control ]; do sleep 0.05; done; "
                    "udevadm trigger -s block; {} with-udev; status=$?; kill $udevd; exit $status; }}",
                    program);
    std::fflush(stdout);
    if (access("/lib/systemd/systemd-udevd", X_OK) == 0)
        (void)verdict(std::system(fmt::format("unshare -m -n sh -c '{}'", inside).c_str()) == 0);
    else
        fmt::print("with udev: not measured, there is no udevd\n");
}

} // namespace
} // namespace brindle

int main(int count, char **words)
{
    using namespace brindle;
    if (count > 1) {
        compareWithLoopDisks(", udev");
    } else if (canAttachLoopDisks()) {
        compareWithLoopDisks("");
        compareWithUdev(std::filesystem::canonical(words[0]));
    } else {
        fmt::print("no loop devices: only the machine's own disks are measured\n");
        compareHere(firstLineOf("lsblk -dnpo NAME"), "");
    }
    return verdictStatus();
}
