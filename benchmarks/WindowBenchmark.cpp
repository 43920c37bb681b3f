// The window on a virtual screen, drawn by the processor: from the start of the program to the first frame with the
// disks of the demo machine, beside an empty Qt Quick window, GNOME Disks and GParted, and the memory a second later;
// then scrolling through 500 disks. The peers are taken at the moment their window comes up, whatever it shows by then.

#include "Compare.h"
#include "Verdict.h"
#include "support/SimulatedMachine.h"

#include <fmt/format.h>

#include <QTemporaryDir>

#include <sys/wait.h>
#include <xcb/xcb.h>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

extern char **environ; // NOLINT

namespace brindle {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int kRounds = 15;
constexpr auto kPatience = 20s;
constexpr double kWindowDelayMs = 200; ///< The window comes that long after the start, by design.
constexpr double kAllowedFrameMs = 33;

/// A program of this one's, which is ended with it.
class Program {
public:
    explicit Program(std::vector<std::string> words)
    {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0)
            std::abort();
        m_output = ends[0];
        std::vector<char *> argv;
        for (std::string &word : words)
            argv.push_back(word.data());
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        m_begin = Clock::now();
        if (posix_spawnp(&m_process, argv[0], &actions, nullptr, argv.data(), environ) != 0)
            m_process = 0;
        posix_spawn_file_actions_destroy(&actions);
        close(ends[1]);
    }
    ~Program()
    {
        if (m_process)
            kill(m_process, SIGTERM);
        while (isRunning()) { // and may have something to say yet
            pollfd output{.fd = m_output, .events = POLLIN, .revents = 0};
            poll(&output, 1, 20);
            std::array<char, 4096> rest{};
            if (output.revents && read(m_output, rest.data(), rest.size()) <= 0)
                std::this_thread::sleep_for(1ms);
        }
        if (m_process)
            waitpid(m_process, nullptr, 0);
        close(m_output);
    }
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    [[nodiscard]] bool isRunning() const
    {
        siginfo_t end{};
        waitid(P_PID, static_cast<id_t>(m_process), &end, WEXITED | WNOHANG | WNOWAIT);
        return m_process && end.si_pid == 0;
    }
    [[nodiscard]] Clock::time_point begin() const { return m_begin; }

    /// The rest of the next line that begins with \a word.
    std::optional<std::string> lineWith(const std::string &word)
    {
        const auto end = Clock::now() + kPatience;
        while (Clock::now() < end) {
            while (const auto line = nextLine()) {
                if (line->starts_with(word))
                    return line->substr(word.size());
            }
            pollfd output{.fd = m_output, .events = POLLIN, .revents = 0};
            if (poll(&output, 1, 1000) <= 0)
                continue;
            std::array<char, 4096> bytes{};
            const ssize_t count = read(m_output, bytes.data(), bytes.size());
            if (count <= 0)
                break;
            m_text.append(bytes.data(), static_cast<std::size_t>(count));
        }
        return std::nullopt;
    }

    /// Its memory in megabytes: what is resident, and the part of it that is its own or its share.
    [[nodiscard]] std::pair<double, double> memory() const
    {
        std::ifstream file(fmt::format("/proc/{}/smaps_rollup", m_process));
        std::pair<double, double> result;
        for (std::string line; std::getline(file, line);) {
            std::istringstream words(line);
            std::string name;
            double kilobytes = 0;
            words >> name >> kilobytes;
            if (name == "Rss:")
                result.first = kilobytes / 1024;
            else if (name == "Pss:")
                result.second = kilobytes / 1024;
        }
        return result;
    }

private:
    std::optional<std::string> nextLine()
    {
        const std::size_t end = m_text.find('\n');
        if (end == std::string::npos)
            return std::nullopt;
        std::string line = m_text.substr(0, end);
        m_text.erase(0, end + 1);
        return line;
    }

    pid_t m_process = 0;
    int m_output = -1;
    Clock::time_point m_begin;
    std::string m_text;
};

/// A virtual screen, and who comes up on it.
class Screen {
public:
    Screen() : m_server({"Xvfb", "-displayfd", "1", "-nolisten", "tcp", "-screen", "0", "1280x1024x24"})
    {
        const auto number = m_server.lineWith("");
        if (!number)
            return;
        setenv("DISPLAY", (":" + *number).c_str(), 1);
        m_connection = xcb_connect(nullptr, nullptr);
        const xcb_screen_t *const screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_connection, screen->root, XCB_CW_EVENT_MASK, &events);
        xcb_flush(m_connection);
    }
    ~Screen()
    {
        if (m_connection)
            xcb_disconnect(m_connection);
    }
    Screen(const Screen &) = delete;
    Screen &operator=(const Screen &) = delete;

    [[nodiscard]] bool isThere() const { return m_connection; }

    /// When a window of \a program has come up; absent where it ends without, or takes too long.
    std::optional<Clock::time_point> windowComes(const Program &program)
    {
        const auto end = Clock::now() + kPatience;
        while (Clock::now() < end && program.isRunning()) {
            pollfd events{.fd = xcb_get_file_descriptor(m_connection), .events = POLLIN, .revents = 0};
            poll(&events, 1, 100);
            const auto now = Clock::now();
            if (isMapped())
                return now;
        }
        return std::nullopt;
    }

    void forgetEvents()
    {
        while (isMapped()) {
        }
    }

private:
    bool isMapped()
    {
        while (xcb_generic_event_t *event = xcb_poll_for_event(m_connection)) {
            const bool isMap = (event->response_type & 0x7f) == XCB_MAP_NOTIFY;
            const bool isMenu = isMap && reinterpret_cast<xcb_map_notify_event_t *>(event)->override_redirect;
            std::free(event); // NOLINT: as libxcb wants it
            if (isMap && !isMenu)
                return true;
        }
        return false;
    }

    Program m_server;
    xcb_connection_t *m_connection = nullptr;
};

/// A bus for all that a desktop program asks for, with the service that GNOME Disks shows the disks of.
class Buses {
public:
    explicit Buses(const std::string &folder)
    {
        const std::string path = folder + "/bus.conf";
        std::ofstream(path) << "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
                               " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
                               "<busconfig><type>session</type><listen>unix:path="
                            << folder
                            << "/bus</listen><policy context=\"default\"><allow send_destination=\"*\"/>"
                               "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>\n";
        m_daemon.emplace(
            std::vector<std::string>{"dbus-daemon", "--nofork", "--print-address", "--config-file=" + path});
        const auto address = m_daemon->lineWith("");
        for (const char *name : {"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"})
            setenv(name, address.value_or("").c_str(), 1);
        m_disks.emplace(std::vector<std::string>{"/usr/libexec/udisks2/udisksd"});
        std::this_thread::sleep_for(2s); // it has looked at all disks by then
    }

private:
    std::optional<Program> m_daemon;
    std::optional<Program> m_disks;
};

struct Start {
    double ms = 0;
    double residentMB = 0;
    double shareMB = 0;
};

Start startFrom(const Program &program, Clock::time_point end)
{
    std::this_thread::sleep_for(1s); // whatever still goes on belongs to the start
    const auto [resident, share] = program.memory();
    return {std::chrono::duration<double, std::milli>(end - program.begin()).count(), resident, share};
}

/// A program with FirstFrame.cpp built in.
std::optional<Start> startOfOurs(std::vector<std::string> words, const char *wantedItem)
{
    setenv("BRINDLE_WAIT_FOR", wantedItem, 1);
    Program program(std::move(words));
    const auto frame = program.lineWith("frame ");
    if (!frame)
        return std::nullopt;
    return startFrom(program, Clock::time_point(std::chrono::nanoseconds(std::stoll(*frame))));
}

std::optional<Start> startOfPeer(Screen &screen, std::vector<std::string> words)
{
    screen.forgetEvents();
    Program program(std::move(words));
    const auto comes = screen.windowComes(program);
    return comes ? std::optional(startFrom(program, *comes)) : std::nullopt;
}

struct Contender {
    std::string name;
    std::function<std::optional<Start>()> start;
    std::vector<Start> starts;

    [[nodiscard]] double middle(double Start::*kind) const
    {
        std::vector<double> values;
        for (const Start &each : starts)
            values.push_back(each.*kind);
        return values.empty() ? 0 : median(std::move(values));
    }
};

void print(const std::string &name, double ours, double allowed, const char *unit)
{
    fmt::print("{:<60} {:>8.1f} {}  allowed {:>8.1f} {}  {}\n", name, ours, unit, allowed, unit,
               verdict(ours <= allowed));
    std::fflush(stdout);
}

void compareStarts(Screen &screen)
{
    std::vector<Contender> all{
        {"brindle --demo",
         [] {
             return startOfOurs({TIMED_WINDOW, "--demo"}, "disk0");
         },
         {}},
        {"empty Qt Quick window", [] { return startOfOurs({EMPTY_WINDOW}, ""); }, {}},
        {"gnome-disks", [&] { return startOfPeer(screen, {"gnome-disks"}); }, {}},
        {"gparted", [&] { return startOfPeer(screen, {"/usr/libexec/gpartedbin"}); }, {}},
    };
    for (int round = 0; round <= kRounds; ++round) {
        for (Contender &each : all) {
            const bool cannotStart = round > 1 && each.starts.empty();
            const auto start = cannotStart ? std::nullopt : each.start();
            if (start && round > 0)
                each.starts.push_back(*start);
        }
    }
    for (const Contender &each : all) {
        if (each.starts.empty())
            fmt::print("{:<60} could not be started here\n", each.name);
        else
            fmt::print("{:<60} {:>8.1f} ms {:>8.1f} MB resident {:>8.1f} MB share\n", each.name,
                       each.middle(&Start::ms), each.middle(&Start::residentMB), each.middle(&Start::shareMB));
    }
    const Contender &ours = all[0];
    const Contender &empty = all[1];
    print("start to the first frame with rows", ours.middle(&Start::ms), kWindowDelayMs + 2 * empty.middle(&Start::ms),
          "ms");
    print("resident memory", ours.middle(&Start::residentMB), 1.5 * empty.middle(&Start::residentMB), "MB");
    for (std::size_t i = 2; i < all.size(); ++i) {
        if (all[i].starts.empty())
            continue;
        print("start, beside " + all[i].name, ours.middle(&Start::ms), all[i].middle(&Start::ms), "ms");
        print("resident memory, beside " + all[i].name, ours.middle(&Start::residentMB),
              all[i].middle(&Start::residentMB), "MB");
    }
}

void fill(SimulatedMachine &machine, int disks)
{
    std::string list;
    for (int i = 0; i < disks; ++i) {
        const std::string identifier = fmt::format("disk{}", i);
        list += fmt::format("/dev/{0} (external, physical):\n   0: GUID_partition_scheme *500.3 GB {0}\n"
                            "   1: EFI EFI 209.7 MB {0}s1\n\n",
                            identifier);
        machine.answer("diskutil", "info " + identifier,
                       {.standardOutput = fmt::format("   Whole: Yes\n   Device / Media Name: Disk {}\n"
                                                      "   Protocol: USB\n   Disk Size: 500.3 GB\n",
                                                      i)});
        machine.answer("diskutil", fmt::format("info {}s1", identifier),
                       {.standardOutput = "   Whole: No\n   Volume Name: EFI\n   Mounted: No\n"});
    }
    machine.answer("diskutil", "list", {.standardOutput = list});
    machine.answer("diskutil", "list physical", {.standardOutput = list});
    machine.answer("df", "-k", {});
}

void scrollThrough(int disks)
{
    SimulatedMachine machine;
    fill(machine, disks);
    setenv("BRINDLE_TOOL_ROOT", machine.root().c_str(), 1);
    setenv("BRINDLE_SCROLL", "1", 1);
    setenv("BRINDLE_WAIT_FOR", "disk0", 1);
    Program program({TIMED_WINDOW});
    const auto line = program.lineWith("scroll ");
    unsetenv("BRINDLE_TOOL_ROOT");
    unsetenv("BRINDLE_SCROLL");
    if (!line) {
        fmt::print("scrolling through {} disks: no frame came\n", disks);
        return;
    }
    std::istringstream figures(*line);
    double frames = 0;
    double middle = 0;
    double worst = 0;
    double middleCPU = 0;
    double worstCPU = 0;
    figures >> frames >> middle >> worst >> middleCPU >> worstCPU;
    fmt::print("{:<60} {:>8.1f} ms by the clock, {:.1f} ms of CPU, of {:.0f} frames\n",
               fmt::format("{} disks, the middle frame of a scroll", disks), middle, middleCPU, frames);
    print(fmt::format("{} disks, the worst frame of a scroll, by the clock", disks), worst, kAllowedFrameMs, "ms");
    print(fmt::format("{} disks, the worst frame of a scroll, CPU", disks), worstCPU, kAllowedFrameMs, "ms");
}

} // namespace
} // namespace brindle

/// Without arguments all of it; "starts" or "scroll" that alone.
int main(int count, char **words)
{
    using namespace brindle;
    const std::string what = count > 1 ? words[1] : "";
    const QTemporaryDir home;
    for (const char *name : {"HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"})
        setenv(name, home.path().toStdString().c_str(), 1);
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    setenv("GSETTINGS_BACKEND", "memory", 1);
    setenv("NO_AT_BRIDGE", "1", 1);
    Screen screen;
    if (!screen.isThere()) {
        fmt::print("window: there is no Xvfb\n");
        return 0;
    }
    const Buses buses(home.path().toStdString());
    if (what != "scroll")
        compareStarts(screen);
    if (what != "starts")
        scrollThrough(500);
    return verdictStatus();
}
