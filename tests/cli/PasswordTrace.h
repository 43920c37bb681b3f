#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// Whether \a bytes hold any six bytes in a row of \a password.
[[nodiscard]] bool holdsRunOf(std::string_view password, std::string_view bytes);

/// The regular files below \a folder that hold a run of \a password.
[[nodiscard]] std::vector<std::string> filesWithRunOf(std::string_view password, const std::filesystem::path &folder);

/// What strace notes of a program and of all that it starts: a file for each thread, so that each call stands on one
/// line.
class PasswordTrace {
public:
    /// \a prefix is the path of the files, which end with a dot and the number of the thread.
    explicit PasswordTrace(std::filesystem::path prefix);

    /// Why nothing can be traced on this machine; empty where it can.
    [[nodiscard]] static std::string obstacle();

    /// The command line, to be followed by that of the program; as another user's only for root.
    [[nodiscard]] std::vector<std::string> command(const std::string &user = "") const;

    /// The calls that hold a run of \a password, which nothing in it may escape in C.
    [[nodiscard]] std::vector<std::string> callsWithRunOf(std::string_view password) const;

private:
    std::filesystem::path m_prefix;
};

} // namespace brindle
