#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace brindle {

/// What asynchronous and throwing operations throw.
///
/// The domain says whose code it is ("CommandError": the exit status of a tool); the description is one sentence fit
/// for a dialog and for standard error, and may be empty where a tool said nothing.
class Error : public std::exception {
public:
    Error(std::string domain, int code, std::string localizedDescription);

    /// The system's own complaint about \a subject: domain "POSIXError", code \a errorNumber, its usual words.
    [[nodiscard]] static Error fromErrno(int errorNumber, std::string_view subject);

    [[nodiscard]] const std::string &domain() const { return m_domain; }
    [[nodiscard]] int code() const { return m_code; }
    [[nodiscard]] const std::string &localizedDescription() const { return m_localizedDescription; }
    [[nodiscard]] const char *what() const noexcept override { return m_localizedDescription.c_str(); }

private:
    std::string m_domain;
    int m_code;
    std::string m_localizedDescription;
};

} // namespace brindle
