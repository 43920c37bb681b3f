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

struct FakeLauncher::State {
    Ended ended;
    bool isRunning = true;
    bool isEnding = false;
};

class FakeLauncher::Child : public ChildProcess {
public:
    Child(FakeLauncher *launcher, std::shared_ptr<State> state) : m_launcher(launcher), m_state(std::move(state)) {}

    [[nodiscard]] bool isRunning() const override { return m_state->isRunning; }

    void terminate() override
    {
        if (!isRunning())
            return;
        ++m_launcher->terminations;
        end(m_state, {.terminationStatus = SIGTERM});
    }

private:
    FakeLauncher *m_launcher;
    std::shared_ptr<State> m_state;
};

void FakeLauncher::end(const std::shared_ptr<State> &child, ChildProcessEnd how)
{
    if (std::exchange(child->isEnding, true))
        return;
    child->isRunning = !how.failure; // one that could not be started never runs
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [child, how = std::move(how)] {
            child->isRunning = false;
            child->ended(how);
        },
        Qt::QueuedConnection);
}

void FakeLauncher::answer(const std::string &commandLine, ChildProcessEnd end)
{
    m_answers.insert_or_assign(commandLine, std::move(end));
}

void FakeLauncher::hold(const std::string &commandLine)
{
    m_held.try_emplace(commandLine);
}

void FakeLauncher::release(const std::string &commandLine)
{
    if (const auto held = m_held.extract(commandLine)) {
        for (const std::shared_ptr<State> &child : held.mapped())
            end(child, endOf(commandLine));
    }
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
    if (journal)
        journal->push_back(commandLine);
    const auto child = std::make_shared<State>(State{.ended = std::move(ended)});
    if (const auto held = m_held.find(commandLine); held != m_held.end())
        held->second.push_back(child);
    else
        end(child, endOf(commandLine));
    return std::make_unique<Child>(this, child);
}

ChildProcessEnd FakeLauncher::endOf(const std::string &commandLine) const
{
    if (const auto answer = m_answers.find(commandLine); answer != m_answers.end())
        return answer->second;
    return {.terminationStatus = 1, .standardError = "No answer was prepared for: " + commandLine};
}

} // namespace brindle
