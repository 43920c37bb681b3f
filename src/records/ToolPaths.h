#pragma once

#include <string>

namespace brindle {

/// Where the platform's tools are: the one value that every path of a tool comes from.
class ToolPaths {
public:
    /// Every tool where the platform has it.
    [[nodiscard]] static ToolPaths system();

    /// Every tool below \a root, so that a folder of programs stands for a whole machine.
    [[nodiscard]] static ToolPaths underRoot(const std::string &root);

    /// The disk tools below \a folder, which comes with the program; sudo and open where the system has them.
    [[nodiscard]] static ToolPaths withSuppliedTools(const std::string &folder);

    [[nodiscard]] std::string diskutil() const { return m_disksRoot + "/usr/sbin/diskutil"; }
    [[nodiscard]] std::string df() const { return m_disksRoot + "/bin/df"; }
    [[nodiscard]] std::string nvram() const { return m_disksRoot + "/usr/sbin/nvram"; }
    [[nodiscard]] std::string systemProfiler() const { return m_disksRoot + "/usr/sbin/system_profiler"; }
    [[nodiscard]] std::string sudo() const { return m_systemRoot + "/usr/bin/sudo"; }
    [[nodiscard]] std::string open() const { return m_systemRoot + "/usr/bin/open"; }

private:
    ToolPaths(std::string disksRoot, std::string systemRoot);

    std::string m_disksRoot;
    std::string m_systemRoot;
};

} // namespace brindle
