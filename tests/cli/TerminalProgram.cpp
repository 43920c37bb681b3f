#include "cli/TerminalProgram.h"

#include "support/ChildOfTest.h"
#include "support/Patience.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>

#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace brindle {

namespace {

/// Texts as exec takes them; they stand in \a texts.
std::vector<char *> pointersTo(std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    for (std::string &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

TerminalProgram::TerminalProgram(const std::string &program, const std::vector<std::string> &arguments,
                                 const std::map<std::string, std::string> &environment, void (*before)())
{
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> assignments;
    for (const auto &[name, value] : environment)
        assignments.push_back(name + "=" + value);
    const std::vector<char *> argv = pointersTo(words);
    const std::vector<char *> envp = pointersTo(assignments);
    m_child = forkpty(&m_terminal, nullptr, nullptr, nullptr);
    if (m_child == 0) {
        before();
        execve(program.c_str(), argv.data(), envp.data());
        _exit(127);
    }
}

TerminalProgram::~TerminalProgram()
{
    if (m_child > 0) {
        kill(m_child, SIGKILL);
        endOf(m_child);
    }
    close(m_terminal);
}

std::string TerminalProgram::awaitText(const std::string &text, int times)
{
    while (!hasShown(text, times) && readMore()) {
    }
    EXPECT_TRUE(hasShown(text, times)) << text << "\nis not in\n" << m_shown;
    return m_shown;
}

bool TerminalProgram::hasShown(const std::string &text, int times) const
{
    std::size_t at = 0;
    for (; times > 0 && at != std::string::npos; --times) {
        at = m_shown.find(text, at);
        at = at == std::string::npos ? at : at + text.size();
    }
    return at != std::string::npos;
}

void TerminalProgram::type(const std::string &text) const
{
    EXPECT_EQ(write(m_terminal, text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

bool TerminalProgram::echoes() const
{
    termios settings{};
    tcgetattr(m_terminal, &settings);
    return (settings.c_lflag & ECHO) != 0;
}

void TerminalProgram::signal(int signalNumber) const
{
    EXPECT_TRUE(m_child > 0 && kill(m_child, signalNumber) == 0);
}

int TerminalProgram::end()
{
    while (readMore()) {
    }
    return endOf(std::exchange(m_child, -1));
}

int TerminalProgram::endWithoutTerminal()
{
    close(std::exchange(m_terminal, -1));
    return endOf(std::exchange(m_child, -1));
}

bool TerminalProgram::readMore()
{
    pollfd waiting{.fd = m_terminal, .events = POLLIN, .revents = 0};
    std::array<char, 4096> bytes{};
    const ssize_t count =
        poll(&waiting, 1, kPatienceMilliseconds) == 1 ? read(m_terminal, bytes.data(), bytes.size()) : 0;
    if (count <= 0)
        return false;
    m_shown.append(bytes.data(), static_cast<std::size_t>(count));
    return true;
}

} // namespace brindle
