// The sudo of a simulated machine: proves the password of the machine file and marks the command as privileged for the
// machine's own tools. It gives no rights on the real machine.

#include "machine/MachineFile.h"
#include "machine/MachineFileActor.h"
#include "machine/Sudo.h"
#include "text/Words.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include <unistd.h>

namespace {

using namespace brindle::tools;

constexpr int kRefused = 1;

/// Becomes the command. Comes back only where it can't be run.
int become(const std::filesystem::path &root, const SudoRequest &request)
{
    const std::string program = programOf(root, request.command.front());
    std::vector<char *> arguments;
    std::vector<std::string> words = request.command;
    words.front() = program;
    std::ranges::transform(words, std::back_inserter(arguments), [](std::string &word) { return word.data(); });
    arguments.push_back(nullptr);
    ::setenv(kPrivilegeVariable, "1", 1);
    ::execvp(program.c_str(), arguments.data());
    std::fprintf(stderr, "sudo: %s: command not found\n", printable(request.command.front()).c_str());
    return kRefused;
}

int run(std::span<const char *const> arguments)
{
    const auto request = readSudoRequest(arguments);
    if (!request) {
        std::fputs("usage: sudo -S -v\nusage: sudo -S [-k] [--] command [arg ...]\n", stderr);
        return kRefused;
    }
    const auto root = MachineFile::findRoot(programPath());
    if (!root) {
        std::fputs("sudo: no machine.json beside this program\n", stderr);
        return kRefused;
    }
    const std::string password = MachineFile(*root).read().password;
    if (!request->readsStandardInput) {
        std::fputs("sudo: a terminal is required to read the password; use the -S option\n"
                   "sudo: a password is required\n",
                   stderr);
        return kRefused;
    }
    if (!provePassword(password, STDIN_FILENO, stderr))
        return kRefused;
    return request->onlyProves ? 0 : become(*root, *request);
}

} // namespace

int main(int argc, char *argv[])
{
    try {
        return run({argv + 1, static_cast<std::size_t>(std::max(argc - 1, 0))});
    } catch (const std::exception &error) {
        std::fprintf(stderr, "sudo: %s\n", printable(error.what()).c_str());
        return kRefused;
    }
}
