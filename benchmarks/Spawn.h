#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <vector>

extern char **environ; // NOLINT

namespace brindle {

/// Starts \a words with standard output thrown away, and standard error too where \a isSilent. Throws where it can't.
inline pid_t start(std::vector<std::string> words, bool isSilent = false)
{
    std::vector<char *> argv;
    for (std::string &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    if (isSilent)
        posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    pid_t process = 0;
    const int error = posix_spawnp(&process, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error(words.front() + " can't be started");
    return process;
}

} // namespace brindle
