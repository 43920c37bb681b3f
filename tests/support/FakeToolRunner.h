#pragma once

#include "base/Completion.h"
#include "base/Error.h"
#include "records/ToolRunner.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace brindle {

namespace detail {

/// What a tool runner is made of, where it starts nothing and never waits.
struct NoPlatform {
    std::unique_ptr<ChildProcessLauncher> launcher;
    std::unique_ptr<Scheduler> scheduler;
    NoPlatform();
};

} // namespace detail

/// A tool runner that runs nothing: it answers by the command line, and remembers what it was asked.
///
/// A command line is the tool's path and its arguments, joined by blanks. One that has no answer fails. Every answer
/// comes at a later turn of the event loop, as a real tool's does.
class FakeToolRunner : private detail::NoPlatform, public ToolRunner {
public:
    FakeToolRunner();

    std::vector<std::string> *journal = nullptr; ///< Gets the command lines too, where it is set.

    void answer(const std::string &commandLine, std::string output);
    void fail(const std::string &commandLine, Error error);

    /// From now on runs of \a commandLine stand still until release(), or until their token is cancelled, which makes
    /// them fail as a terminated tool does.
    void hold(const std::string &commandLine);

    /// Lets all held runs of \a commandLine go on, and later ones pass.
    void release(const std::string &commandLine);

    /// The command lines that were run, in order.
    [[nodiscard]] const std::vector<std::string> &calls() const { return m_calls; }

    QCoro::Task<std::string> run(std::string path, std::vector<std::string> args,
                                 std::optional<std::map<std::string, std::string>> environment = {},
                                 CancellationToken token = {}) override;

private:
    /// Completes with whether the run may answer; a cancellation completes it with false.
    using Gate = Completion<bool>;

    Gate gateOf(const std::string &commandLine);

    std::map<std::string, std::variant<std::string, Error>> m_answers;
    std::map<std::string, std::vector<Gate>> m_heldRuns; ///< An entry, empty at first, for each held command line.
    std::vector<std::string> m_calls;
};

} // namespace brindle
