#include "support/ToolGate.h"
#include "support/Patience.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <array>
#include <cerrno>
#include <system_error>

extern "C" {
#include <sys/pidfd.h> // does not say so itself before glibc 2.37
}

namespace brindle {

namespace fs = std::filesystem;

namespace {

void require(bool isDone, const char *what)
{
    if (!isDone)
        throw std::system_error(errno, std::generic_category(), what);
}

/// Puts the gate in the place of each tool, which moves behind it.
void putBeforeTools(const fs::path &root, const fs::path &gate)
{
    for (const char *folder : {"bin", "usr/bin", "usr/sbin"}) {
        for (const fs::directory_entry &tool : fs::directory_iterator(root / folder)) {
            fs::rename(tool.path(), gate / tool.path().filename());
            fs::create_symlink(GATED_TOOL, tool.path());
        }
    }
}

FileDescriptor listeningAt(const std::string &path)
{
    FileDescriptor listener(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    sockaddr_un address{.sun_family = AF_UNIX};
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    require(::bind(listener.value(), reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0 &&
                ::listen(listener.value(), SOMAXCONN) == 0,
            "the gate's socket");
    return listener;
}

/// The tool at the other end; nullopt where it was ended before it could tell its call.
std::optional<HeldTool> heldAt(FileDescriptor connection)
{
    std::array<char, 4096> call{};
    const ssize_t count = ::recv(connection.value(), call.data(), call.size(), 0);
    ucred tool{};
    socklen_t size = sizeof(tool);
    require(::getsockopt(connection.value(), SOL_SOCKET, SO_PEERCRED, &tool, &size) == 0, "a tool at the gate");
    if (count <= 0)
        return std::nullopt;
    return HeldTool{{call.data(), static_cast<std::size_t>(count)}, tool.pid, std::move(connection)};
}

} // namespace

ToolGate::ToolGate(const fs::path &root)
{
    const fs::path gate = root / "gate";
    fs::create_directory(gate);
    m_socket = listeningAt(gate / "socket");
    putBeforeTools(root, gate);
}

std::optional<HeldTool> ToolGate::next(pid_t program) const
{
    const FileDescriptor end(pidfd_open(program, 0));
    while (true) {
        std::array<pollfd, 2> waiting{{{m_socket.value(), POLLIN, 0}, {end.value(), POLLIN, 0}}};
        require(end && ::poll(waiting.data(), waiting.size(), kPatienceMilliseconds) > 0, "no tool and no end");
        if (waiting[0].revents == 0)
            return std::nullopt;
        FileDescriptor connection(::accept4(m_socket.value(), nullptr, nullptr, SOCK_CLOEXEC));
        require(static_cast<bool>(connection), "the gate");
        if (auto tool = heldAt(std::move(connection)))
            return tool;
    }
}

} // namespace brindle
