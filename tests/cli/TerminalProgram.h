#pragma once

#include <map>
#include <string>
#include <vector>

#include <sys/types.h>

namespace brindle {

/// A program in a terminal of its own, which it controls.
class TerminalProgram {
public:
    /// \a before runs in the child before the program.
    TerminalProgram(const std::string &program, const std::vector<std::string> &arguments,
                    const std::map<std::string, std::string> &environment, void (*before)());
    ~TerminalProgram();
    TerminalProgram(const TerminalProgram &) = delete;
    TerminalProgram &operator=(const TerminalProgram &) = delete;

    /// Waits until the terminal has shown \a text that many \a times; all that it has shown by then. Fails the test
    /// where that doesn't come.
    std::string awaitText(const std::string &text, int times = 1);
    void type(const std::string &text) const;
    [[nodiscard]] bool echoes() const; ///< Whether the terminal shows what is typed.
    void signal(int signalNumber) const;

    /// Waits for the end: the exit status, or the negative number of the signal that ended it.
    int end();

    /// Closes the terminal, as a window that is closed does, and waits for the end.
    int endWithoutTerminal();

    /// All that the terminal has shown; complete after end().
    [[nodiscard]] const std::string &shown() const { return m_shown; }

private:
    [[nodiscard]] bool hasShown(const std::string &text, int times) const;
    bool readMore();

    int m_terminal = -1;
    pid_t m_child = -1;
    std::string m_shown;
};

} // namespace brindle
