#include "detectors/Diskutil.h"

#include <utility>

namespace brindle {

Diskutil::Diskutil(ToolRunner &tools, ToolPaths paths) : m_tools(tools), m_paths(std::move(paths)) {}

QCoro::Task<std::string> Diskutil::run(std::vector<std::string> arguments, CancellationToken token) const
{
    return m_tools.run(m_paths.diskutil(), std::move(arguments), std::nullopt, std::move(token));
}

QCoro::Task<std::optional<std::string>> Diskutil::outputIfAny(std::vector<std::string> arguments,
                                                              CancellationToken token) const
{
    return m_tools.outputIfAny(m_paths.diskutil(), std::move(arguments), std::nullopt, std::move(token));
}

} // namespace brindle
