// Run by real-sudo-test alone, as a user of its making: where a password goes that is typed or that is stored, as seen
// from outside, with the real sudo and real secret stores. The disks are those of a simulated machine.

#include "cli/ActingFixture.h"
#include "cli/PasswordTrace.h"
#include "cli/TerminalProgram.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/LinuxSecretStore.h"
#include "platform/linux/PrivateSession.h"
#include "privileged/RealSudoUser.h"
#include "support/ProcessMemory.h"
#include "support/WaitUntil.h"

#include <array>
#include <cstdlib>
#include <fstream>

#include <fcntl.h>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace brindle {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAreArray;

constexpr const char *kPrompt = "Administrator Password: ";

const SecretKey kKey{"com.orlane.Brindle", "admin-password"};

/// A standard output that nobody reads for now: a program stands still as soon as it writes to it.
class UnreadOutput {
public:
    explicit UnreadOutput(std::string path) : m_path(std::move(path))
    {
        EXPECT_EQ(mkfifo(m_path.c_str(), 0600), 0);
        m_pipe = FileDescriptor(open(m_path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
        const std::array<char, 4096> zeros{};
        while (write(m_pipe.value(), zeros.data(), zeros.size()) > 0) {
        }
    }

    [[nodiscard]] const std::string &path() const { return m_path; }

    /// Returns once \a process writes to it, or has ended.
    static void waitForWriter(const std::string &process)
    {
        const std::string writing = fmt::format("{} 0x1 ", SYS_write);
        bool hasCome = false;
        waitUntil([&] {
            std::ifstream file("/proc/" + process + "/syscall");
            std::string call;
            hasCome = hasCome || !std::getline(file, call) || call.starts_with(writing);
            return hasCome; // a tracer lets it run for a moment more
        });
    }

    /// What was written since the last time.
    std::string take()
    {
        std::string text;
        std::array<char, 4096> bytes{};
        for (ssize_t count = 0; (count = read(m_pipe.value(), bytes.data(), bytes.size())) > 0;)
            text.append(bytes.data(), static_cast<std::size_t>(count));
        std::erase(text, '\0');
        return text;
    }

private:
    std::string m_path;
    FileDescriptor m_pipe;
};

/// How a password passes a store that keeps it.
struct StoreCase {
    const char *name;
    bool isSecretService;                  ///< Which gets and gives it enciphered.
    std::vector<std::string> writing = {}; ///< The calls that hold it, as wayOf() names them.
    std::vector<std::string> reading = {};
};

class RealPasswordSecrecy : public ActingFixture, public testing::WithParamInterface<StoreCase> {
protected:
    void SetUp() override
    {
        ASSERT_NE(geteuid(), 0U) << "this test is no program to be run by hand";
        if (const std::string obstacle = PasswordTrace::obstacle(); !obstacle.empty())
            GTEST_SKIP() << obstacle;
        if (const std::string obstacle = PrivateSession::obstacle(); GetParam().isSecretService && !obstacle.empty())
            GTEST_SKIP() << obstacle;
        if (rlimit limit{}; getrlimit(RLIMIT_CORE, &limit) == 0 && limit.rlim_max == 0)
            GTEST_SKIP() << "the limit for core images lets nobody look into the program's memory";
        if (GetParam().isSecretService)
            m_session.emplace();
        else
            qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
        m_store.emplace(BRINDLECTL_LIBEXEC "/lib/brindle-secret-service.so");
        if (m_store->add(kKey, Secret("probe")) != SecretStore::kDone)
            GTEST_SKIP() << "there is no such store";
        (void)m_store->remove(kKey);
        ASSERT_EQ(std::system("sudo -K"), 0); // forgets the proofs of the tests before
        installProgram();
    }
    void TearDown() override
    {
        if (m_store)
            (void)m_store->remove(kKey);
    }

    LinuxSecretStore &store() { return *m_store; }

    /// What is known of a run that has ended well.
    struct Run {
        std::string output;
        std::string shown; ///< On the terminal.
        std::vector<std::string> ways;
        bool imageHoldsEnvironment = false;
        bool imageHoldsPassword = false;
    };

    /// Runs the program in a terminal and types the password where \a isAsked. The image is taken when it has acted
    /// and is about to tell so.
    Run traced(const std::vector<std::string> &arguments, bool isAsked)
    {
        UnreadOutput output(m_notes.filePath(QStringLiteral("output")).toStdString());
        const std::string pid = m_notes.filePath(QStringLiteral("pid")).toStdString();
        const PasswordTrace trace(m_notes.filePath(QStringLiteral("calls")).toStdString());
        TerminalProgram program("/bin/sh", tracedCommand(trace, output.path(), pid, arguments), environment(), [] {});
        if (isAsked) {
            program.awaitText(kPrompt);
            program.type(std::string(kSudoPassword) + "\n");
        }
        waitUntil([&] { return fs::exists(pid) && contentsOf(pid).ends_with("\n"); });
        const std::string process = std::to_string(std::stoi(contentsOf(pid)));
        output.waitForWriter(process);
        Run run;
        lookAtMemory(process, [&](std::span<const char> region) {
            const std::string_view bytes(region.data(), region.size());
            run.imageHoldsEnvironment |= bytes.find("HOME=" + home()) != std::string_view::npos;
            run.imageHoldsPassword |= holdsRunOf(kSudoPassword, bytes);
        });
        run.output = output.take();
        EXPECT_EQ(program.end(), 0) << program.shown();
        run.output += output.take();
        run.shown = program.shown();
        for (const std::string &call : trace.callsWithRunOf(kSudoPassword))
            run.ways.push_back(wayOf(call));
        return run;
    }

    void expectSecrecy(const Run &run) const
    {
        EXPECT_TRUE(run.imageHoldsEnvironment);
        EXPECT_FALSE(run.imageHoldsPassword);
        EXPECT_FALSE(holdsRunOf(kSudoPassword, run.output));
        EXPECT_FALSE(holdsRunOf(kSudoPassword, run.shown));
        EXPECT_THAT(filesWithRunOf(kSudoPassword, folder()), IsEmpty());
    }

private:
    [[nodiscard]] std::string program() const { return folder() + "/bin/brindlectl"; }

    /// The program as it is installed, but that the tools it comes with are the machine's.
    void installProgram() const
    {
        fs::create_directory(folder() + "/bin");
        fs::copy(BRINDLECTL, program());
        fs::create_directory(folder() + "/libexec");
        fs::create_symlink(root(), folder() + "/libexec/brindle");
        fs::create_symlink(BRINDLECTL_LIBEXEC "/lib", root() + "/lib");
        // As the machine's own sudo tells its tools who they are; sudo passes on none of the environment.
        putBefore("usr/sbin/diskutil", "export ASAN_OPTIONS=detect_leaks=0\n"
                                       "[ \"$(id -u)\" != 0 ] || export BRINDLE_MACHINE_ROOT_RIGHTS=1");
    }

    /// The arguments of a shell. Root's strace alone can trace sudo.
    [[nodiscard]] std::vector<std::string> tracedCommand(const PasswordTrace &trace, const std::string &output,
                                                         const std::string &pid,
                                                         const std::vector<std::string> &arguments) const
    {
        std::vector<std::string> words{"-c", "exec \"$@\" >\"$0\"", output, "sudo", "-n"};
        const auto add = [&words](const std::vector<std::string> &more) {
            words.insert(words.end(), more.begin(), more.end());
        };
        add(trace.command(getpwuid(geteuid())->pw_name));
        add({"/usr/bin/env", "-i"});
        std::map<std::string, std::string> variables = environment();
        variables.erase("BRINDLE_TOOL_ROOT");
        variables["DBUS_SESSION_BUS_ADDRESS"] = qgetenv("DBUS_SESSION_BUS_ADDRESS").toStdString();
        for (const auto &[name, value] : variables)
            words.push_back(name + "=" + value);
        add({"/bin/sh", "-c", "echo $$ >\"$0\"; exec \"$@\"", pid, program()});
        add(arguments);
        return words;
    }

    /// What a call that holds the password is; one that may hold none, as it stands.
    static std::string wayOf(const std::string &call)
    {
        static const std::string line = fmt::format("\"{}\\n\"", kSudoPassword);
        static const std::string text = fmt::format("\"{}\"", kSudoPassword);
        const auto is = [&call](const char *start, const std::string &bytes) {
            return call.starts_with(start) && call.find(bytes) != std::string::npos;
        };
        if (is("read(", "</dev/tty>, " + line))
            return "read from the terminal";
        if (is("write(", "<pipe:[") && is("write(", "]>, " + line))
            return "write to sudo";
        if (is("add_key(\"user\", ", ", " + text))
            return "key written";
        if (is("keyctl(KEYCTL_READ, ", ", " + text))
            return "key read";
        return call;
    }

    QTemporaryDir m_notes;
    std::optional<PrivateSession> m_session;
    std::optional<LinuxSecretStore> m_store;
};

INSTANTIATE_TEST_SUITE_P(With, RealPasswordSecrecy,
                         testing::Values(StoreCase{"TheSecretService", true},
                                         StoreCase{"TheKernelsKeyring", false, {"key written"}, {"key read"}}),
                         [](const auto &row) { return row.param.name; });

TEST_P(RealPasswordSecrecy, KeepsATypedPasswordToTheTerminalTheStoreAndSudo)
{
    const Run mount = traced({"mount", "disk2s1", "--verbose"}, true);

    std::vector<std::string> ways{"read from the terminal", "write to sudo", "write to sudo"}; // its proof and its use
    std::ranges::copy(GetParam().writing, std::back_inserter(ways));
    std::ranges::copy(GetParam().reading, std::back_inserter(ways));
    EXPECT_THAT(mount.ways, UnorderedElementsAreArray(ways));
    EXPECT_THAT(mount.output, HasSubstr("disk2s1 is mounted at "));
    EXPECT_TRUE(isMounted("disk2s1"));
    EXPECT_EQ(store().find(kKey), Secret(kSudoPassword));
    expectSecrecy(mount);
}

TEST_P(RealPasswordSecrecy, KeepsAStoredPasswordToTheStoreAndSudo)
{
    ASSERT_EQ(store().add(kKey, Secret(kSudoPassword)), SecretStore::kDone);

    const Run mount = traced({"mount", "disk2s1", "--verbose"}, false);

    std::vector<std::string> ways{"write to sudo"};
    std::ranges::copy(GetParam().reading, std::back_inserter(ways));
    EXPECT_THAT(mount.ways, UnorderedElementsAreArray(ways));
    EXPECT_THAT(mount.shown, Not(HasSubstr(kPrompt)));
    EXPECT_TRUE(isMounted("disk2s1"));
    expectSecrecy(mount);
}

} // namespace
} // namespace brindle
