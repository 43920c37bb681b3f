#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace brindle::tools {

/// A program of the system that acting makes use of.
struct SystemProgram {
    std::string_view name;    ///< "mkfs.fat"
    std::string_view package; ///< Debian's, in which it is.
};

/// Runs programs of the system. They are looked for in \a folders alone, never where an environment tells, get an
/// environment of their own and no input, and end by themselves whatever becomes of the caller.
class Programs {
public:
    explicit Programs(std::vector<std::string> folders = {"/usr/sbin", "/usr/bin", "/sbin", "/bin"});

    /// Where a program is; empty for nowhere.
    [[nodiscard]] std::string find(std::string_view name) const;

    /// The same. \throws ActionError that names the package where there is none.
    [[nodiscard]] std::string require(const SystemProgram &program) const;

    /// Runs a program of an absolute path and waits for its end. \throws ActionError with what it printed last where
    /// it failed.
    void run(const std::string &path, const std::vector<std::string> &arguments) const;

private:
    std::vector<std::string> m_folders;
};

} // namespace brindle::tools
