#include "detectors/Diskutil.h"

#include "base/Error.h"

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
    try {
        auto output = run(std::move(arguments), std::move(token));
        co_return co_await output;
    } catch (const Error &) {
        co_return std::nullopt;
    }
}

} // namespace brindle
