#include "support/FakeLauncher.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <csignal>
#include <utility>

namespace brindle {

namespace {

std::string commandLineOf(const ChildProcessCommand &command)
{
    return fmt::format("{} {}", command.path, fmt::join(command.arguments, " "));
}

} // namespace

class FakeLauncher::Child : public ChildProcess {
public:
    Child(FakeLauncher *launcher, Ended ended)
        : m_launcher(launcher),
          m_state(std::make_shared<State>(State{true, std::move(ended)}))
    {
    }

    [[nodiscard]] bool isRunning() const override { return m_state->isRunning; }

    void terminate() override
    {
        if (!isRunning())
            return;
        ++m_launcher->terminations;
        end({.terminationStatus = SIGTERM});
    }

    void end(ChildProcessEnd how)
    {
        m_state->isRunning = !how.failure; // one that could not be started never runs
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [state = m_state, how = std::move(how)] {
                state->isRunning = false;
                state->ended(how);
            },
            Qt::QueuedConnection);
    }

private:
    struct State {
        bool isRunning;
        Ended ended;
    };

    FakeLauncher *m_launcher;
    std::shared_ptr<State> m_state;
};

void FakeLauncher::answer(const std::string &commandLine, ChildProcessEnd end)
{
    m_held.erase(commandLine);
    m_answers.insert_or_assign(commandLine, std::move(end));
}

void FakeLauncher::hold(const std::string &commandLine)
{
    m_held.insert(commandLine);
}

std::vector<std::string> FakeLauncher::commandLines() const
{
    std::vector<std::string> lines;
    for (const ChildProcessCommand &command : commands)
        lines.push_back(commandLineOf(command));
    return lines;
}

std::unique_ptr<ChildProcess> FakeLauncher::launch(ChildProcessCommand command, Ended ended)
{
    const std::string commandLine = commandLineOf(command);
    commands.push_back(std::move(command));
    auto child = std::make_unique<Child>(this, std::move(ended));
    if (!m_held.contains(commandLine))
        child->end(endOf(commandLine));
    return child;
}

ChildProcessEnd FakeLauncher::endOf(const std::string &commandLine) const
{
    if (const auto answer = m_answers.find(commandLine); answer != m_answers.end())
        return answer->second;
    return {.terminationStatus = 1, .standardError = "No answer was prepared for: " + commandLine};
}

} // namespace brindle
