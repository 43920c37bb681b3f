#include "platform/linux/PosixSpawn.h"

#include <fmt/format.h>

#include <cerrno>
#include <csignal>
#include <utility>

#include <spawn.h>

namespace brindle {

namespace {

/// Texts in the form in which a program is handed them.
class CStrings {
public:
    explicit CStrings(std::vector<std::string> texts) : m_texts(std::move(texts))
    {
        for (std::string &text : m_texts) {
            // The program would see the text cut off there, and could act on another disk than the one that was meant.
            if (text.find('\0') != std::string::npos)
                throw Error::fromErrno(EINVAL, text.substr(0, text.find('\0')));
            m_pointers.push_back(text.data());
        }
        m_pointers.push_back(nullptr);
    }

    [[nodiscard]] char *const *data() const { return m_pointers.data(); }

private:
    std::vector<std::string> m_texts;
    std::vector<char *> m_pointers;
};

/// What the child's side does before the program begins.
class SpawnSetup {
public:
    explicit SpawnSetup(const StandardDescriptors &descriptors)
    {
        posix_spawn_file_actions_init(&m_fileActions);
        // In this order: where this process has no standard error, its number may be that of the output's pipe.
        posix_spawn_file_actions_adddup2(&m_fileActions, descriptors.output.value(), STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&m_fileActions, descriptors.error.value(), STDERR_FILENO);
        if (descriptors.input)
            posix_spawn_file_actions_adddup2(&m_fileActions, descriptors.input.value(), STDIN_FILENO);
        posix_spawn_file_actions_addclosefrom_np(&m_fileActions, STDERR_FILENO + 1);

        // What this process ignores or blocks for its own sake must not make a program deaf to its termination. A
        // hang-up or interrupt that was ignored from outside (nohup, a shell's background job) stays ignored.
        sigset_t none;
        sigemptyset(&none);
        sigset_t defaults;
        sigemptyset(&defaults);
        for (const int signal : {SIGTERM, SIGPIPE, SIGCHLD})
            sigaddset(&defaults, signal);
        posix_spawnattr_init(&m_attributes);
        posix_spawnattr_setsigmask(&m_attributes, &none);
        posix_spawnattr_setsigdefault(&m_attributes, &defaults);
        // A process group of its own: Ctrl-C in the terminal is the program's to answer, and ends no tool amid its
        // work.
        posix_spawnattr_setpgroup(&m_attributes, 0);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
    }
    SpawnSetup(const SpawnSetup &) = delete;
    SpawnSetup &operator=(const SpawnSetup &) = delete;
    ~SpawnSetup()
    {
        posix_spawn_file_actions_destroy(&m_fileActions);
        posix_spawnattr_destroy(&m_attributes);
    }

    [[nodiscard]] const posix_spawn_file_actions_t *fileActions() const { return &m_fileActions; }
    [[nodiscard]] const posix_spawnattr_t *attributes() const { return &m_attributes; }

private:
    posix_spawn_file_actions_t m_fileActions;
    posix_spawnattr_t m_attributes;
};

CStrings argumentsOf(const ChildProcessCommand &command)
{
    std::vector<std::string> arguments{command.path};
    arguments.insert(arguments.end(), command.arguments.begin(), command.arguments.end());
    return CStrings(std::move(arguments));
}

CStrings assignmentsOf(const std::map<std::string, std::string> &environment)
{
    std::vector<std::string> assignments;
    for (const auto &[name, value] : environment)
        assignments.push_back(fmt::format("{}={}", name, value));
    return CStrings(std::move(assignments));
}

} // namespace

pid_t posixSpawn(const ChildProcessCommand &command, const StandardDescriptors &descriptors)
{
    const CStrings arguments = argumentsOf(command);
    const CStrings assignments = assignmentsOf(command.environment.value_or(std::map<std::string, std::string>{}));
    const SpawnSetup setup(descriptors);
    pid_t pid = 0;

    const int error = posix_spawn(&pid, command.path.c_str(), setup.fileActions(), setup.attributes(), arguments.data(),
                                  command.environment ? assignments.data() : environ);
    if (error != 0)
        throw Error::fromErrno(error, command.path);
    return pid;
}

} // namespace brindle
