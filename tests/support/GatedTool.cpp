// A program that stands before one of the platform's tools: it waits until a ToolGate lets it go on and becomes the
// tool.
//
// Called as ROOT/usr/sbin/diskutil it tells its call and waits at the socket ROOT/gate/socket, and then becomes
// ROOT/gate/diskutil with all that it was given. Where nobody holds it up it becomes the tool at once.

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

fs::path gateAbove(const fs::path &tool)
{
    fs::path root = tool.parent_path();
    while (root.has_relative_path() && !fs::exists(root / "gate"))
        root = root.parent_path();
    return root / "gate";
}

void waitAt(const fs::path &gate, const std::string &call)
{
    const int file = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    sockaddr_un address{.sun_family = AF_UNIX};
    (gate / "socket").string().copy(address.sun_path, sizeof(address.sun_path) - 1);
    char answer = 0;
    if (connect(file, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0 &&
        send(file, call.data(), call.size(), MSG_NOSIGNAL) > 0)
        (void)!recv(file, &answer, sizeof(answer), 0);
    close(file);
}

} // namespace

int main(int argc, char **argv)
{
    const fs::path tool = argv[0];
    const fs::path gate = gateAbove(tool);
    std::string call = tool.filename();
    for (int i = 1; i < argc; ++i)
        call += " " + std::string(argv[i]);

    waitAt(gate, call);

    const fs::path behind = gate / tool.filename();
    execv(behind.c_str(), argv);
    return 127;
}
