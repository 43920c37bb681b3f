// Real events of real devices: run as root by disk-events-test in namespaces of their own, with udevd and without.

#include "platform/linux/LinuxDiskEvents.h"

#include "platform/linux/UdevDiskSession.h"
#include "support/Patience.h"
#include "support/Sanitizer.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QProcess>

#include <gmock/gmock.h>

#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
constexpr auto kMounted = DiskEvents::VolumeChange::mounted;
constexpr auto kUnmounted = DiskEvents::VolumeChange::unmounted;

bool hasUdev()
{
    return std::getenv("BRINDLE_TEST_UDEV") != nullptr;
}

/// Runs a shell's line; its standard output without the newline at the end.
std::string shell(const std::string &line)
{
    QProcess process;
    process.start(QStringLiteral("/bin/sh"), {QStringLiteral("-ec"), QString::fromStdString(line)});
    const bool isDone = process.waitForFinished(kPatienceMilliseconds) && process.exitCode() == 0;
    EXPECT_TRUE(isDone) << line << ": " << process.readAllStandardError().toStdString();
    return process.readAllStandardOutput().trimmed().toStdString();
}

/// Runs the event loop until \a isDone, or until patience ends.
void waitUntil(const std::function<bool()> &isDone)
{
    const QDeadlineTimer deadline(kPatienceMilliseconds);
    while (!isDone() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    EXPECT_TRUE(isDone());
}

std::size_t openDescriptors()
{
    return static_cast<std::size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()));
}

/// Leaves room for a few events only in the queue of each session of this process.
void shortenQueues()
{
    for (const fs::directory_entry &entry : fs::directory_iterator("/proc/self/fd")) {
        const int descriptor = std::stoi(entry.path().filename());
        const int size = 4096;
        int domain = 0;
        socklen_t length = sizeof(domain);
        const bool isSocket = ::getsockopt(descriptor, SOL_SOCKET, SO_DOMAIN, &domain, &length) == 0;
        if (isSocket && domain == AF_NETLINK)
            EXPECT_EQ(::setsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &size, sizeof(size)), 0);
    }
}

class LinuxDiskEventsTest : public testing::Test {
protected:
    LinuxDiskEventsTest()
    {
        std::string pattern = (fs::temp_directory_path() / "brindle-events-XXXXXX").string();
        m_folder = mkdtemp(pattern.data());
        shell("truncate -s 16M " + image());
    }

    ~LinuxDiskEventsTest() override
    {
        if (!m_loop.empty())
            detach();
        fs::remove_all(m_folder);
    }

    [[nodiscard]] std::string image() const { return (m_folder / "disk.img").string(); }
    [[nodiscard]] std::string folder(const std::string &name) const
    {
        fs::create_directories(m_folder / name);
        return (m_folder / name).string();
    }

    void attach() { m_loop = shell("losetup -f --show " + image()); }
    void detach()
    {
        shell("losetup -d " + m_loop);
        m_loop.clear();
    }

    [[nodiscard]] const std::string &loop() const { return m_loop; }
    [[nodiscard]] std::string kernelName() const { return fs::path(m_loop).filename(); }

    /// A session that lists loop devices too, and tells by their kernel's name what it saw: "appeared loop0".
    std::unique_ptr<DiskEvents::Observation> loopSession()
    {
        const auto isLoop = [](std::string_view sysPath) { return sysPath.find("/block/loop") != std::string::npos; };
        return std::make_unique<UdevDiskSession>(isLoop, [this](DiskEvents::DiskChange change, const auto &disk) {
            EXPECT_EQ(disk->isWhole, true);
            const std::string name = disk->mediaName.value_or("");
            seen.push_back((change == DiskEvents::DiskChange::appeared ? "appeared " : "disappeared ") + name);
        });
    }

    void waitFor(const std::string &event)
    {
        waitUntil([&] { return std::ranges::find(seen, event) != seen.end(); });
    }

    std::vector<std::string> seen;

private:
    fs::path m_folder;
    std::string m_loop;
};

// --- disks

TEST_F(LinuxDiskEventsTest, TellADiskThatComesAndGoesByOneName)
{
    const auto session = loopSession();
    attach();
    const std::string name = "Disk Image (" + kernelName() + ")";

    waitFor("appeared " + name);
    detach();
    waitFor("disappeared " + name);
}

TEST_F(LinuxDiskEventsTest, TellNothingOfWhatWasThereBefore)
{
    attach();
    const std::string name = "Disk Image (" + kernelName() + ")";
    if (hasUdev())
        shell("udevadm settle");
    const auto session = loopSession();

    detach();

    waitFor("disappeared " + name);
    EXPECT_THAT(seen, Not(Contains("appeared " + name)));
}

TEST_F(LinuxDiskEventsTest, TellANewTableButNotAWriteThatLeavesTheTableAsItWas)
{
    if (!hasUdev())
        GTEST_SKIP() << "only udev tells that somebody has written to a disk";
    attach();
    const std::string name = "Disk Image (" + kernelName() + ")";
    shell("echo label: gpt | sfdisk -q " + loop() + " && udevadm settle");
    const auto session = loopSession();

    shell("dd if=/dev/urandom of=" + loop() + " bs=4096 seek=1000 count=1 conv=notrunc 2>&1 && udevadm settle");
    QCoreApplication::processEvents();
    EXPECT_THAT(seen, Not(Contains("appeared " + name)));

    shell("echo label: gpt | sfdisk -q " + loop());
    waitFor("appeared " + name);
}

TEST_F(LinuxDiskEventsTest, TellOfALoopDeviceWhichIsADiskImage)
{
    LinuxDiskEvents events;
    std::vector<std::string> told;
    const auto session = events.createSession(
        [&told](DiskEvents::DiskChange, const auto &disk) { told.push_back(disk->mediaName.value_or("")); });

    attach();

    waitUntil([&] { return std::ranges::find(told, "Disk Image (" + kernelName() + ")") != told.end(); });
}

TEST_F(LinuxDiskEventsTest, CompareAllDisksWhenEventsWereDropped)
{
    attach();
    const std::string name = "Disk Image (" + kernelName() + ")";
    const std::string otherDisk = fs::path(shell("losetup -f")).filename();
    if (hasUdev())
        shell("udevadm settle");
    const auto session = loopSession();
    shortenQueues();

    for (int i = 0; i < 100; ++i)
        std::ofstream("/sys/block/" + otherDisk + "/uevent") << "change\n";
    detach(); // its own event finds the queue full
    if (hasUdev())
        shell("udevadm settle");

    waitFor("disappeared " + name);
    EXPECT_EQ(std::ranges::count(seen, "disappeared " + name), 1);
}

TEST_F(LinuxDiskEventsTest, FollowTheKernelOnceUdevHasDied)
{
    const char *udevd = std::getenv("BRINDLE_TEST_UDEVD");
    if (!udevd)
        GTEST_SKIP() << "udevd lives on";
    const auto session = loopSession();
    attach();
    const std::string name = "Disk Image (" + kernelName() + ")";
    waitFor("appeared " + name);

    shell(std::string("kill -9 ") + udevd + "; while grep -q /run/udev/control /proc/net/unix; do sleep 0.05; done");
    detach();

    waitFor("disappeared " + name);
}

TEST_F(LinuxDiskEventsTest, CreateNoSessionWhereNoSocketIsLeft)
{
    if (kSanitizerNeedsDescriptors)
        GTEST_SKIP() << "the sanitizer needs a descriptor of its own";
    LinuxDiskEvents events;
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none{0, before.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &none);

    const auto session = events.createSession([](DiskEvents::DiskChange, const auto &) {});

    ::setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(session, nullptr);
}

// --- volumes

class Volumes : public LinuxDiskEventsTest {
protected:
    std::unique_ptr<DiskEvents::Observation> observe(DiskEvents::VolumeChange which)
    {
        return events.observeVolumes(which, [this, which](const std::optional<std::string> &path) {
            seen.push_back((which == kMounted ? "mounted " : "unmounted ") + path.value_or("nothing"));
        });
    }

    LinuxDiskEvents events;
};

TEST_F(Volumes, AreToldWhenTheyAreMountedAndUnmounted)
{
    shell("mkfs.ext4 -q " + image());
    attach();
    const std::string place = folder("A Volume\nof two lines \\040");
    const auto mounts = observe(kMounted);
    const auto unmounts = observe(kUnmounted);

    shell("mount " + loop() + " '" + place + "'");
    waitFor("mounted " + place);
    shell("mount -o remount,ro '" + place + "' && mount --bind '" + place + "'/lost+found '" + folder("bound") + "'");
    shell("umount '" + folder("bound") + "' && umount '" + place + "'");
    waitFor("unmounted " + place);

    EXPECT_THAT(seen, ElementsAre("mounted " + place, "unmounted " + place));
}

TEST_F(Volumes, AreToldOnlyToWhoObservesThem)
{
    shell("mkfs.ext4 -q " + image());
    attach();
    const std::string place = folder("volume");
    const auto unmounts = observe(kUnmounted);
    auto mounts = observe(kMounted);
    mounts.reset();

    shell("mount " + loop() + " " + place + " && umount " + place + " && mount " + loop() + " " + place);
    QCoreApplication::processEvents();
    shell("umount " + place);
    waitFor("unmounted " + place);

    EXPECT_THAT(seen, ElementsAre("unmounted " + place));
}

TEST_F(Volumes, AreNoFileSystemsInMemory)
{
    shell("mkfs.ext4 -q " + image());
    attach();
    const std::string memory = folder("memory");
    const std::string volume = folder("volume");
    const auto mounts = observe(kMounted);

    shell("mount -t tmpfs " + loop() + " " + memory + " && mount " + loop() + " " + volume);
    waitFor("mounted " + volume);
    shell("umount " + memory + " && umount " + volume);

    EXPECT_THAT(seen, ElementsAre("mounted " + volume));
}

// --- what they take of the system

TEST_F(Volumes, AndDisksCloseTheirDescriptorsWhenTheyAreNotObservedAnyMore)
{
    const auto onMount = [](const std::optional<std::string> &) {};
    std::ignore = events.observeVolumes(kMounted, onMount); // what Qt opens once
    const std::size_t before = openDescriptors();

    for (int i = 0; i < 3; ++i) {
        const auto mounts = events.observeVolumes(kMounted, onMount);
        const auto unmounts = events.observeVolumes(kUnmounted, onMount);
        const auto session = events.createSession([](DiskEvents::DiskChange, const auto &) {});
        EXPECT_EQ(openDescriptors(), before + 4);
    }

    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
} // namespace brindle
