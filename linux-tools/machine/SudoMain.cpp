// The sudo of a simulated machine: proves the password of the machine file and marks the command as privileged for the
// machine's own tools. It gives no rights on the real machine.

#include "command/Answer.h"
#include "machine/MachineFile.h"
#include "machine/MachineFileActor.h"
#include "machine/Sudo.h"
#include "text/Words.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

#include <unistd.h>

namespace {

using namespace brindle::tools;

Answer refused(std::string reason = {})
{
    return {.status = kFailed, .out = {}, .err = std::move(reason)};
}

/// Becomes the command. Comes back only where it can't be run.
Answer become(const std::filesystem::path &root, const SudoRequest &request)
{
    const std::string program = programOf(root, request.command.front());
    std::vector<char *> arguments;
    std::vector<std::string> words = request.command;
    words.front() = program;
    std::ranges::transform(words, std::back_inserter(arguments), [](std::string &word) { return word.data(); });
    arguments.push_back(nullptr);
    ::setenv(kPrivilegeVariable, "1", 1);
    ::execvp(program.c_str(), arguments.data());
    return refused(fmt::format("sudo: {}: command not found\n", printable(request.command.front())));
}

Answer answerOf(std::span<const char *const> arguments)
{
    const auto request = readSudoRequest(arguments);
    if (!request)
        return refused("usage: sudo -S -v\nusage: sudo -S [-k] [--] command [arg ...]\n");
    const auto root = MachineFile::findRoot(programPath());
    if (!root)
        return refused("sudo: no machine.json beside this program\n");
    const std::string password = MachineFile(*root).read().password;
    if (!request->readsStandardInput)
        return refused("sudo: a terminal is required to read the password; use the -S option\n"
                       "sudo: a password is required\n");
    if (!provePassword(password, STDIN_FILENO, stderr))
        return refused();
    return request->onlyProves ? Answer() : become(*root, *request);
}

} // namespace

int main(int argc, char *argv[])
{
    return tellAnswer([&] { return answerOf({argv + 1, static_cast<std::size_t>(std::max(argc - 1, 0))}); });
}
