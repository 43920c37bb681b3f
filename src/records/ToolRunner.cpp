#include "records/ToolRunner.h"

#include <csignal>
#include <string_view>
#include <utility>

extern char **environ; // POSIX leaves the declaration to the program

namespace brindle {

namespace {

// No tool that is called here takes this long on a healthy machine. The same for all tools and all callers.
constexpr std::chrono::seconds kTimeLimit{30};

std::map<std::string, std::string> addedToOwnEnvironment(std::map<std::string, std::string> entries)
{
    for (char **entry = environ; *entry != nullptr; ++entry) {
        const std::string_view assignment(*entry);
        if (const std::size_t sign = assignment.find('='); sign != std::string_view::npos)
            entries.emplace(assignment.substr(0, sign), assignment.substr(sign + 1)); // a given entry stays
    }
    return entries;
}

} // namespace

ToolRunner::ToolRunner(ChildProcessLauncher &launcher, Scheduler &scheduler) : m_processes(launcher, scheduler) {}

QCoro::Task<std::string> ToolRunner::run(std::string path, std::vector<std::string> args,
                                         std::optional<std::map<std::string, std::string>> environment,
                                         CancellationToken token)
{
    if (m_end.isCancelled())
        throw Error("CommandError", SIGTERM, path + " is not started any more");
    ChildProcessCommand command{std::move(path), std::move(args), std::nullopt};
    if (environment)
        command.environment = addedToOwnEnvironment(std::move(*environment));

    const auto either = CancellationToken::cancellable();
    const auto endsWithItsToken = token.onCancel([either] { either.cancel(); });
    const auto endsWithAll = m_end.onCancel([either] { either.cancel(); });
    auto tool = m_processes.run(std::move(command), kTimeLimit, either);
    ChildProcessEnd end = co_await tool;
    co_return standardOutputOf(std::move(end), "CommandError");
}

void ToolRunner::endAll()
{
    m_end.cancel();
}

QCoro::Task<std::optional<std::string>> ToolRunner::outputIfAny(
    std::string path, std::vector<std::string> args, std::optional<std::map<std::string, std::string>> environment,
    CancellationToken token)
{
    try {
        auto output = run(std::move(path), std::move(args), std::move(environment), std::move(token));
        co_return co_await output;
    } catch (const Error &) {
        co_return std::nullopt;
    }
}

} // namespace brindle
