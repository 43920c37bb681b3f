#pragma once

#include "base/BlockOn.h"
#include "platform/linux/LinuxChildProcess.h"
#include "records/ToolRunner.h"
#include "support/ManualClock.h"
#include "support/Patience.h"

#include <QTemporaryDir>

#include <cerrno>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <sys/stat.h>

namespace brindle {

/// Hands everything on to the real launcher and counts the calls of terminate() that reach a running child.
class CountingLauncher : public ChildProcessLauncher {
public:
    std::unique_ptr<ChildProcess> launch(ChildProcessCommand command, Ended ended) override
    {
        lastCommand = command;
        return std::make_unique<Counted>(m_launcher.launch(std::move(command), std::move(ended)), &terminations);
    }

    ChildProcessCommand lastCommand;
    int terminations = 0;

private:
    class Counted : public ChildProcess {
    public:
        Counted(std::unique_ptr<ChildProcess> child, int *terminations)
            : m_child(std::move(child)),
              m_terminations(terminations)
        {
        }
        [[nodiscard]] bool isRunning() const override { return m_child->isRunning(); }
        void terminate() override
        {
            *m_terminations += isRunning() ? 1 : 0;
            m_child->terminate();
        }

    private:
        std::unique_ptr<ChildProcess> m_child;
        int *m_terminations;
    };

    LinuxChildProcessLauncher m_launcher;
};

/// A tool runner on real children, with a clock of its own.
struct RealTools {
    ManualClock clock;
    CountingLauncher launcher;
    ToolRunner runner{launcher, clock};

    QCoro::Task<std::string> sleep(CancellationToken token = {})
    {
        return runner.run("/bin/sleep", {"40"}, std::nullopt, std::move(token));
    }
    QCoro::Task<std::string> shell(std::string script) { return runner.run("/bin/sh", {"-c", std::move(script)}); }
    QCoro::Task<std::string> printVariable(const char *name,
                                           std::optional<std::map<std::string, std::string>> environment)
    {
        return runner.run("/usr/bin/printenv", {name}, std::move(environment));
    }
};

inline std::string outputOf(QCoro::Task<std::string> run)
{
    return blockOn(std::move(run), kPatience);
}

inline Error errorOf(QCoro::Task<std::string> run)
{
    try {
        const std::string output = blockOn(std::move(run), kPatience);
        return {"NoError", 0, output};
    } catch (const Error &error) {
        return error;
    }
}

/// A child that ends when the test says so.
class PromptedLauncher : public ChildProcessLauncher {
public:
    std::unique_ptr<ChildProcess> launch(ChildProcessCommand, Ended ended) override
    {
        m_ended = std::move(ended);
        return std::make_unique<Prompted>(this);
    }
    void endChild(ChildProcessEnd end)
    {
        m_isRunning = false;
        m_ended(std::move(end));
    }

    int terminations = 0;

private:
    class Prompted : public ChildProcess {
    public:
        explicit Prompted(PromptedLauncher *launcher) : m_launcher(launcher) {}
        [[nodiscard]] bool isRunning() const override { return m_launcher->m_isRunning; }
        void terminate() override { ++m_launcher->terminations; }

    private:
        PromptedLauncher *m_launcher;
    };

    Ended m_ended;
    bool m_isRunning = true;
};

/// A named pipe by which a tool and the test wait for one another.
class Rendezvous {
public:
    Rendezvous() : m_path(m_folder.filePath(QStringLiteral("pipe")).toStdString())
    {
        if (mkfifo(m_path.c_str(), 0600) != 0)
            throw Error::fromErrno(errno, m_path);
    }

    [[nodiscard]] const std::string &path() const { return m_path; }
    void await() const
    {
        std::string line;
        std::getline(std::ifstream(m_path) >> std::ws, line);
    }
    void signal() const { std::ofstream(m_path) << "go\n"; }

private:
    QTemporaryDir m_folder;
    std::string m_path;
};

} // namespace brindle
