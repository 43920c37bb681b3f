// A program that stands for one of the platform's tools: it prints the answer that was prepared for its arguments.
//
// Called as ROOT/usr/sbin/diskutil it looks in ROOT/usr/sbin/diskutil.answers for a folder named by its arguments,
// joined by blanks with "/" as "%". There "stdout" and "stderr" are printed, "delay" is waited in milliseconds before
// ("hang": for ever; "die": it is killed instead) and "status" is the exit status. Each start and end is a line of
// ROOT/calls.log. Without an answer it fails as the tools do for what they don't know.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>

namespace {

std::string contents(const std::string &path)
{
    std::string text;
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return text;
    char buffer[4096];
    for (ssize_t count = 0; (count = read(file, buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(count));
    close(file);
    return text;
}

void print(const std::string &path, int to)
{
    const std::string text = contents(path);
    for (std::size_t written = 0; written < text.size();) {
        const ssize_t count = write(to, text.data() + written, text.size() - written);
        if (count < 0 && errno != EINTR)
            return;
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
}

void note(const std::string &root, const std::string &line)
{
    const int log = open((root + "/calls.log").c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    if (log < 0)
        return;
    if (write(log, line.data(), line.size()) < 0)
        _exit(70);
    close(log);
}

void wait(const std::string &delay)
{
    if (delay == "die")
        raise(SIGKILL);
    if (delay == "hang") {
        while (true)
            pause();
    }
    if (!delay.empty())
        usleep(static_cast<useconds_t>(std::strtoul(delay.c_str(), nullptr, 10)) * 1000U);
}

/// ROOT of ROOT/usr/sbin/diskutil and of ROOT/bin/df.
std::string rootOf(const std::string &tool)
{
    const std::string folder = tool.substr(0, tool.rfind('/'));
    for (const char *place : {"/usr/sbin", "/usr/bin", "/bin"}) {
        if (folder.ends_with(place))
            return folder.substr(0, folder.size() - std::string(place).size());
    }
    return folder;
}

} // namespace

int main(int argc, char **argv)
{
    const std::string tool = argv[0];
    const std::string name = tool.substr(tool.rfind('/') + 1);
    const std::string root = rootOf(tool);

    std::string call;
    for (int i = 1; i < argc; ++i)
        call += (i > 1 ? " " : "") + std::string(argv[i]);
    std::string folder = call;
    for (char &character : folder)
        character = character == '/' ? '%' : character;
    folder = tool + ".answers/" + folder;

    note(root, "start " + name + " " + call + "\n");
    struct stat there {};
    int status = 1;
    if (stat(folder.c_str(), &there) == 0) {
        wait(contents(folder + "/delay"));
        print(folder + "/stdout", STDOUT_FILENO);
        print(folder + "/stderr", STDERR_FILENO);
        status = static_cast<int>(std::strtol(contents(folder + "/status").c_str(), nullptr, 10));
    } else {
        const std::string complaint = "Could not find disk: " + std::string(argc > 1 ? argv[argc - 1] : "") + "\n";
        if (write(STDERR_FILENO, complaint.data(), complaint.size()) < 0)
            status = 70;
    }
    note(root, "end " + name + " " + call + "\n");
    return status;
}
