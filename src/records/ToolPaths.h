#pragma once

#include <string>

namespace brindle {

/// Where the command-line tools stand: the one value that every tool path comes from.
class ToolPaths {
public:
    /// The system's own tools, at their usual places.
    [[nodiscard]] static ToolPaths system();

    /// All tools in the folder \a root, laid out as on the system, so that a folder of programs stands for a whole
    /// machine. No tool of the real machine is reached, sudo included.
    [[nodiscard]] static ToolPaths underRoot(std::string root);

    /// The tools that a system without them is supplied with, in \a libexecDirectory; the rest is the system's own.
    [[nodiscard]] static ToolPaths withSuppliedTools(std::string libexecDirectory);

    [[nodiscard]] std::string diskutil() const;
    [[nodiscard]] std::string df() const;
    [[nodiscard]] std::string nvram() const;
    [[nodiscard]] std::string systemProfiler() const;
    [[nodiscard]] std::string sudo() const;
    [[nodiscard]] std::string open() const;

private:
    ToolPaths(std::string diskToolRoot, std::string systemToolRoot);

    std::string m_diskToolRoot;   ///< Stands in front of the tools that tell of disks and of the machine.
    std::string m_systemToolRoot; ///< Stands in front of all others.
};

} // namespace brindle
