#include "cli/TerminalDialogs.h"

#include "assembly/Interruption.h"

#include "base/VisibleText.h"

#include <QSocketNotifier>
#include <fmt/format.h>

#include <charconv>
#include <filesystem>
#include <utility>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace brindle {

namespace {

constexpr std::size_t kLongestLine = 4096; // what the kernel's line discipline keeps

/// The settings of a terminal while a line is typed. Ctrl-C and Ctrl-\ end the line then instead of the program.
class LineSettings {
public:
    LineSettings(int terminal, bool isShown) : m_terminal(terminal)
    {
        tcgetattr(m_terminal, &m_before);
        termios settings = m_before;
        settings.c_lflag |= ICANON;
        settings.c_lflag &= ~static_cast<tcflag_t>(ISIG);
        if (!isShown) {
            settings.c_lflag &= ~static_cast<tcflag_t>(ECHO);
            settings.c_lflag |= ECHONL;
        }
        settings.c_cc[VEOL] = m_before.c_cc[VINTR];
        settings.c_cc[VEOL2] = m_before.c_cc[VQUIT];
        tcsetattr(m_terminal, TCSAFLUSH, &settings); // what was typed before could be a password's beginning
    }
    ~LineSettings() { tcsetattr(m_terminal, TCSADRAIN, &m_before); }
    LineSettings(const LineSettings &) = delete;
    LineSettings &operator=(const LineSettings &) = delete;

    /// Also forgets what was typed of the line: the shell would show it.
    void restore() const { tcsetattr(m_terminal, TCSAFLUSH, &m_before); }

    [[nodiscard]] bool cancels(char last) const
    {
        const auto character = static_cast<cc_t>(last);
        return character == m_before.c_cc[VINTR] || character == m_before.c_cc[VQUIT];
    }

private:
    int m_terminal;
    termios m_before{};
};

/// The line that waits to be read; nullopt where the input has ended or the line was cancelled.
std::optional<Secret> takeLine(int terminal, const LineSettings &settings)
{
    Secret line;
    line.resize(kLongestLine);
    const ssize_t count = read(terminal, line.data(), kLongestLine);
    if (count <= 0)
        return std::nullopt;
    const auto length = static_cast<std::size_t>(count);
    const char last = line.data()[length - 1];
    if (settings.cancels(last))
        return std::nullopt;
    line.resize(last == '\n' ? length - 1 : length);
    return line;
}

int openTerminal()
{
    const int controlling = open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY);
    if (controlling >= 0)
        return controlling;
    return isatty(STDIN_FILENO) ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1) : -1;
}

/// The index of the button that \a answer names by its number; the last one's where it names none.
std::size_t chosenButton(const std::string &answer, std::size_t count)
{
    std::size_t number = 0;
    std::from_chars(answer.data(), answer.data() + answer.size(), number);
    return number >= 1 && number <= count ? number - 1 : count - 1;
}

} // namespace

/// The place of a dialog among those that are asked for.
class TerminalDialogs::Turn {
public:
    explicit Turn(TerminalDialogs &dialogs) : m_before(std::exchange(dialogs.m_lastTurn, m_end)) {}
    ~Turn() { m_end.complete(true); }
    Turn(const Turn &) = delete;
    Turn &operator=(const Turn &) = delete;

    /// Returns once the dialog before has ended: at once where there is none.
    [[nodiscard]] QCoro::Task<> hasCome() const
    {
        if (m_before.isComplete())
            co_return;
        co_await m_before;
    }

private:
    Completion<bool> m_end;
    Completion<bool> m_before;
};

TerminalDialogs::TerminalDialogs() : TerminalDialogs(openTerminal()) {}

TerminalDialogs::TerminalDialogs(int terminal) : m_terminal(terminal)
{
    m_lastTurn.complete(true);
}

TerminalDialogs::~TerminalDialogs()
{
    if (hasTerminal())
        ::close(m_terminal);
}

void TerminalDialogs::close()
{
    m_isClosed = true;
    m_line.complete(false);
}

QCoro::Task<std::size_t> TerminalDialogs::alert(Alert alert)
{
    const Turn turn(*this);
    auto waiting = turn.hasCome();
    co_await waiting;
    if (!canAsk())
        co_return alert.buttons.size() - 1;
    sayLines(alert.messageText, alert.informativeText);
    if (alert.buttons.size() == 1)
        co_return std::size_t{0};
    for (std::size_t i = 0; i < alert.buttons.size(); ++i)
        say(fmt::format("{}) {}  ", i + 1, visibleText(alert.buttons[i])));
    auto typing = textLine("Number: ", "");
    const std::optional<std::string> answer = co_await typing;
    co_return chosenButton(answer.value_or(""), alert.buttons.size());
}

QCoro::Task<std::optional<Secret>> TerminalDialogs::securePrompt(SecurePrompt prompt)
{
    const Turn turn(*this);
    auto waiting = turn.hasCome();
    co_await waiting;
    if (!canAsk())
        co_return std::nullopt;
    sayLines(prompt.alert.messageText, prompt.alert.informativeText);
    auto typing = line(visibleText(prompt.placeholder) + ": ", Echo::off);
    co_return co_await typing;
}

QCoro::Task<std::optional<std::string>> TerminalDialogs::textPrompt(TextPrompt prompt)
{
    const Turn turn(*this);
    auto waiting = turn.hasCome();
    co_await waiting;
    if (!canAsk())
        co_return std::nullopt;
    sayLines(prompt.alert.messageText, prompt.alert.informativeText);
    auto typing =
        textLine(fmt::format("{} [{}]: ", visibleText(prompt.placeholder), visibleText(prompt.text)), prompt.text);
    co_return co_await typing;
}

QCoro::Task<std::optional<std::string>> TerminalDialogs::savePanel(SavePanel panel)
{
    TextPrompt prompt{.alert = {.messageText = panel.title, .informativeText = panel.message, .buttons = {}},
                      .placeholder = "Path",
                      .text = std::filesystem::path(panel.startFolder) / panel.proposedName};
    auto asking = textPrompt(std::move(prompt));
    const std::optional<std::string> path = co_await asking;
    co_return path ? std::optional(std::filesystem::absolute(*path).string()) : std::nullopt;
}

void TerminalDialogs::say(std::string_view text) const
{
    [[maybe_unused]] const ssize_t written = write(m_terminal, text.data(), text.size());
}

void TerminalDialogs::sayLines(const std::string &title, const std::string &text) const
{
    say(fmt::format("{}\n{}\n", visibleLines(title), visibleLines(text)));
}

QCoro::Task<std::optional<Secret>> TerminalDialogs::line(std::string question, Echo echo)
{
    // Signals are caught before the terminal is changed and until it is as before.
    std::optional<LineSettings> settings;
    const Completion<bool> typed;
    const Interruption interruption([&settings, typed] {
        settings->restore();
        typed.complete(false); // nothing is read any more where the program goes on: it would be seen
    });
    settings.emplace(m_terminal, echo == Echo::on);
    say(question);
    m_line = typed;
    QSocketNotifier notifier(m_terminal, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [&notifier, typed] {
        notifier.setEnabled(false);
        typed.complete(true);
    });
    const bool isTyped = co_await typed;
    std::optional<Secret> result = isTyped ? takeLine(m_terminal, *settings) : std::nullopt;
    if (!isTyped)
        settings->restore();
    if (!result)
        say("\n");
    settings.reset();
    co_return result;
}

QCoro::Task<std::optional<std::string>> TerminalDialogs::textLine(std::string question, std::string proposal)
{
    auto typing = line(std::move(question), Echo::on);
    const std::optional<Secret> typed = co_await typing;
    if (!typed)
        co_return std::nullopt;
    co_return typed->isEmpty() ? proposal : std::string(typed->view());
}

} // namespace brindle
