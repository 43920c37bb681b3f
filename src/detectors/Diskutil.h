#pragma once

#include "base/CancellationToken.h"
#include "records/ToolPaths.h"
#include "records/ToolRunner.h"

#include <QCoroTask>

#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// `diskutil`, as the detectors ask it. Main thread only.
class Diskutil {
public:
    Diskutil(ToolRunner &tools, ToolPaths paths); ///< The tool runner outlives this.

    /// What the tool prints; throws the runner's Error where it fails.
    [[nodiscard]] QCoro::Task<std::string> run(std::vector<std::string> arguments, CancellationToken token) const;

    /// What the tool prints; nullopt where it fails, for questions whose failure only loses the answer.
    [[nodiscard]] QCoro::Task<std::optional<std::string>> outputIfAny(std::vector<std::string> arguments,
                                                                      CancellationToken token) const;

private:
    ToolRunner &m_tools;
    ToolPaths m_paths;
};

} // namespace brindle
