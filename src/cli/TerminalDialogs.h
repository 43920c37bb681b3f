#pragma once

#include "base/Completion.h"
#include "platform/Dialogs.h"

#include <optional>
#include <string>
#include <string_view>

namespace brindle {

/// Dialogs in the terminal that the program was started from, whatever its input and output are: one after the other,
/// in the order in which they were asked for. Ctrl-C and the end of the input cancel a dialog; an alert with one button
/// doesn't wait for it.
///
/// While a line is typed the event loop goes on. A signal that is to end the program restores the terminal and cancels
/// the dialog first. What was typed stays in no memory but the answer. Without a terminal every dialog is cancelled at
/// once.
class TerminalDialogs final : public Dialogs {
public:
    TerminalDialogs(); ///< On the controlling terminal, else on that of standard input.

    explicit TerminalDialogs(int terminal); ///< Takes over the descriptor; one below 0 is no terminal.
    ~TerminalDialogs() override;
    TerminalDialogs(const TerminalDialogs &) = delete;
    TerminalDialogs &operator=(const TerminalDialogs &) = delete;

    [[nodiscard]] bool hasTerminal() const { return m_terminal >= 0; }

    /// Cancels the dialog that waits for an answer, all that wait for their turn, and those to come.
    void close();

    [[nodiscard]] QCoro::Task<std::size_t> alert(Alert alert) override;
    [[nodiscard]] QCoro::Task<std::optional<Secret>> securePrompt(SecurePrompt prompt) override;
    [[nodiscard]] QCoro::Task<std::optional<std::string>> textPrompt(TextPrompt prompt) override;
    [[nodiscard]] QCoro::Task<std::optional<std::string>> savePanel(SavePanel panel) override;

private:
    enum class Echo { on, off };
    class Turn;

    [[nodiscard]] bool canAsk() const { return hasTerminal() && !m_isClosed; }
    void say(std::string_view text) const;
    void sayLines(const std::string &title, const std::string &text) const;
    QCoro::Task<std::optional<Secret>> line(std::string question, Echo echo);
    QCoro::Task<std::optional<std::string>> textLine(std::string question, std::string proposal);

    int m_terminal;
    bool m_isClosed = false;
    Completion<bool> m_lastTurn; ///< The end of the last dialog that was asked for.
    Completion<bool> m_line;     ///< Of the dialog that waits for an answer: true where there is one to be read.
};

} // namespace brindle
