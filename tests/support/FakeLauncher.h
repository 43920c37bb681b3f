#pragma once

#include "platform/ChildProcess.h"

#include <map>
#include <memory>
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
    int terminations = 0;                        ///< Of running children.
    std::vector<std::string> *journal = nullptr; ///< Gets the command lines too, where it is set.

    void answer(const std::string &commandLine, ChildProcessEnd end);

    /// From now on \a commandLine starts children that run until they are terminated or released.
    void hold(const std::string &commandLine);

    /// Ends the held children of \a commandLine with its answer, and lets later ones pass.
    void release(const std::string &commandLine);

    [[nodiscard]] std::vector<std::string> commandLines() const;

    std::unique_ptr<ChildProcess> launch(ChildProcessCommand command, Ended ended) override;

private:
    struct State;
    class Child;

    static void end(const std::shared_ptr<State> &child, ChildProcessEnd how);
    [[nodiscard]] ChildProcessEnd endOf(const std::string &commandLine) const;

    std::map<std::string, ChildProcessEnd> m_answers;
    std::map<std::string, std::vector<std::shared_ptr<State>>> m_held; ///< An entry for each held command line.
};

} // namespace brindle
