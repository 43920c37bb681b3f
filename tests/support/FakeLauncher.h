#pragma once

#include "platform/ChildProcess.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace brindle {

/// Starts no child: it answers by the command line and remembers what it was asked.
///
/// A command line is the program's path and its arguments, joined by blanks. One that has no answer fails. A child ends
/// at a later turn of the event loop, as a real one does. The launcher outlives its children.
class FakeLauncher : public ChildProcessLauncher {
public:
    /// The commands that were started, in order.
    std::vector<ChildProcessCommand> commands;
    int terminations = 0; ///< Of running children.

    void answer(const std::string &commandLine, ChildProcessEnd end);

    /// From now on \a commandLine starts children that run until they are terminated.
    void hold(const std::string &commandLine);

    [[nodiscard]] std::vector<std::string> commandLines() const;

    std::unique_ptr<ChildProcess> launch(ChildProcessCommand command, Ended ended) override;

private:
    class Child;

    [[nodiscard]] ChildProcessEnd endOf(const std::string &commandLine) const;

    std::map<std::string, ChildProcessEnd> m_answers;
    std::set<std::string> m_held;
};

} // namespace brindle
