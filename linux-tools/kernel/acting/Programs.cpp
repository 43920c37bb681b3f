#include "kernel/acting/Programs.h"

#include "acting/Actor.h"
#include "kernel/Files.h"
#include "text/Words.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace brindle::tools {
namespace {

/// What the program printed, in a file of memory: whoever reads a pipe could go, and the program would end with it.
class PrintedText {
public:
    PrintedText() : m_descriptor(::memfd_create("printed", MFD_CLOEXEC)) {}
    PrintedText(const PrintedText &) = delete;
    PrintedText &operator=(const PrintedText &) = delete;
    ~PrintedText() { ::close(m_descriptor); }

    [[nodiscard]] int descriptor() const { return m_descriptor; }

    [[nodiscard]] std::string lastLine() const
    {
        const std::string text = fileBytes(fmt::format("/proc/self/fd/{}", m_descriptor));
        const std::string_view trimmedText = trimmed(text);
        return printable(trimmedText.substr(trimmedText.rfind('\n') + 1));
    }

private:
    int m_descriptor;
};

int spawn(const std::string &path, const std::vector<std::string> &arguments, int output, pid_t &pid)
{
    std::vector<char *> words{const_cast<char *>(path.c_str())}; // NOLINT: the call takes them so and changes none.
    for (const std::string &argument : arguments)
        words.push_back(const_cast<char *>(argument.c_str())); // NOLINT
    words.push_back(nullptr);
    std::string searchPath = "PATH=/usr/sbin:/usr/bin:/sbin:/bin";
    std::string locale = "LC_ALL=C.UTF-8";
    const std::array<char *, 3> environment{searchPath.data(), locale.data(), nullptr};
    posix_spawn_file_actions_t actions{};
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
    const int error = ::posix_spawn(&pid, path.c_str(), &actions, nullptr, words.data(), environment.data());
    ::posix_spawn_file_actions_destroy(&actions);
    return error;
}

int waitFor(pid_t pid)
{
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        // A signal that has a handler came between.
    }
    return status;
}

} // namespace

Programs::Programs(std::vector<std::string> folders) : m_folders(std::move(folders)) {}

std::string Programs::find(std::string_view name) const
{
    for (const std::string &folder : m_folders) {
        std::string path = fmt::format("{}/{}", folder, name);
        if (::access(path.c_str(), X_OK) == 0)
            return path;
    }
    return {};
}

std::string Programs::require(const SystemProgram &program) const
{
    std::string path = find(program.name);
    if (path.empty())
        throw ActionError(
            fmt::format("The program {} is missing: install the package {}", program.name, program.package));
    return path;
}

void Programs::run(const std::string &path, const std::vector<std::string> &arguments) const
{
    const PrintedText printed;
    pid_t pid = 0;
    const std::string_view name = std::string_view(path).substr(path.rfind('/') + 1);
    if (const int error = spawn(path, arguments, printed.descriptor(), pid))
        throw ActionError(fmt::format("{}: {}", name, std::strerror(error)));
    const int status = waitFor(pid);
    if (!WIFEXITED(status))
        throw ActionError(fmt::format("{} was ended by signal {}", name, WTERMSIG(status)));
    if (WEXITSTATUS(status) != 0)
        throw ActionError(fmt::format("{} failed with status {}: {}", name, WEXITSTATUS(status), printed.lastLine()));
}

} // namespace brindle::tools
