#include "records/ToolRunner.h"

#include "base/Completion.h"
#include "base/Error.h"
#include "base/Text.h"

#include <string_view>
#include <utility>

#include <unistd.h>

namespace brindle {

namespace {

/// The whole environment of this process with \a entries merged in.
ToolRunner::Environment merged(ToolRunner::Environment entries)
{
    for (char **entry = environ; *entry; ++entry) {
        const std::string_view text = *entry;
        const std::size_t equals = text.find('=');
        if (equals != std::string_view::npos)
            entries.emplace(text.substr(0, equals), text.substr(equals + 1)); // a given entry stays
    }
    return entries;
}

/// What a call gives or throws for the way its tool ended.
std::string outputOf(ChildProcessEnd end)
{
    if (end.failure)
        throw std::move(*end.failure);
    if (end.terminationStatus != 0) {
        throw Error("CommandError", end.terminationStatus,
                    isUtf8(end.standardError) ? std::move(end.standardError) : "Unknown error");
    }
    return isUtf8(end.standardOutput) ? std::move(end.standardOutput) : std::string();
}

} // namespace

ToolRunner::ToolRunner(ChildProcessLauncher &launcher, Scheduler &scheduler)
    : m_launcher(launcher),
      m_scheduler(scheduler)
{
}

QCoro::Task<std::string> ToolRunner::run(std::string path, std::vector<std::string> args,
                                         std::optional<Environment> environment, CancellationToken token)
{
    if (environment)
        environment = merged(std::move(*environment));

    const Completion<ChildProcessEnd> ended;
    const auto process = m_launcher.launch({std::move(path), std::move(args), std::move(environment)},
                                           [ended](ChildProcessEnd end) { ended.complete(std::move(end)); });
    const auto terminate = [&process] { process->terminate(); };
    const auto registration = token.onCancel(terminate);
    const auto timeOut = process->isRunning() ? m_scheduler.after(kTimeLimit, terminate) : nullptr;

    ChildProcessEnd end = co_await ended;
    co_return outputOf(std::move(end));
}

} // namespace brindle
