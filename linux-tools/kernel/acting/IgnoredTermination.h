#pragma once

#include <csignal>

namespace brindle::tools {

/// Until its end neither this process nor a program that it starts meanwhile heeds SIGTERM, by which a caller ends what
/// it has no patience for: a table or a file system is no use half written.
class IgnoredTermination {
public:
    IgnoredTermination() : m_before(std::signal(SIGTERM, SIG_IGN)) {}
    IgnoredTermination(const IgnoredTermination &) = delete;
    IgnoredTermination &operator=(const IgnoredTermination &) = delete;
    ~IgnoredTermination() { std::signal(SIGTERM, m_before); }

private:
    void (*m_before)(int);
};

} // namespace brindle::tools
