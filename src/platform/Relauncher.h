#pragma once

#include "base/Error.h"

#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// Starts the application again. Main thread only.
class Relauncher {
public:
    virtual ~Relauncher() = default;

    /// Starts a new process of the application with \a arguments, beside this one and not in its place. Gives why that
    /// failed; how the process gets on is not waited for.
    virtual std::optional<Error> startNewInstance(std::vector<std::string> arguments) = 0;
};

} // namespace brindle
