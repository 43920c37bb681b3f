#include "support/FakeToolRunner.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <stdexcept>
#include <utility>

namespace brindle {

namespace {

class NoLauncher : public ChildProcessLauncher {
public:
    std::unique_ptr<ChildProcess> launch(ChildProcessCommand command, Ended) override
    {
        throw std::logic_error("a fake tool runner launched " + command.path);
    }
};

class NoScheduler : public Scheduler {
public:
    [[nodiscard]] Date date() const override { return {}; }
    [[nodiscard]] std::unique_ptr<Timer> after(Duration, std::function<void()>) override { return nullptr; }
    [[nodiscard]] std::unique_ptr<Timer> repeat(Duration, std::function<void()>) override { return nullptr; }
};

} // namespace

detail::NoPlatform::NoPlatform() : launcher(std::make_unique<NoLauncher>()), scheduler(std::make_unique<NoScheduler>())
{
}

FakeToolRunner::FakeToolRunner() : ToolRunner(*launcher, *scheduler) {}

void FakeToolRunner::answer(const std::string &commandLine, std::string output)
{
    m_answers.insert_or_assign(commandLine, std::move(output));
}

void FakeToolRunner::fail(const std::string &commandLine, Error error)
{
    m_answers.insert_or_assign(commandLine, std::move(error));
}

void FakeToolRunner::hold(const std::string &commandLine)
{
    m_heldRuns.try_emplace(commandLine);
}

void FakeToolRunner::release(const std::string &commandLine)
{
    if (const auto held = m_heldRuns.extract(commandLine)) {
        for (const Gate &gate : held.mapped())
            gate.complete(true);
    }
}

FakeToolRunner::Gate FakeToolRunner::gateOf(const std::string &commandLine)
{
    Gate gate;
    if (const auto held = m_heldRuns.find(commandLine); held != m_heldRuns.end())
        held->second.push_back(gate);
    else
        gate.complete(true);
    return gate;
}

QCoro::Task<std::string> FakeToolRunner::run(std::string path, std::vector<std::string> args,
                                             std::optional<std::map<std::string, std::string>>, CancellationToken token)
{
    const std::string commandLine = fmt::format("{} {}", path, fmt::join(args, " "));
    m_calls.push_back(commandLine);
    if (journal)
        journal->push_back(m_calls.back());

    const Gate gate = gateOf(commandLine);
    const auto cancellation = token.onCancel([gate] { gate.complete(false); });
    if (!co_await gate)
        throw Error("CommandError", 15, "The tool was terminated.");

    const auto answer = m_answers.find(commandLine);
    if (answer == m_answers.end())
        throw Error("CommandError", 1, "No answer was prepared for: " + commandLine);
    if (const auto *error = std::get_if<Error>(&answer->second))
        throw *error;
    std::string output = std::get<std::string>(answer->second);
    co_return output; // a copy of its own: QCoro moves out of any lvalue that is returned
}

} // namespace brindle
