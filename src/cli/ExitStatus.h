#pragma once

namespace brindle {

/// What brindlectl ends with; scripts rely on the numbers.
enum class ExitStatus : int {
    done = 0,
    failed = 1,     ///< The action failed; why stands on standard error.
    wrongUsage = 2, ///< The command line can't be understood.
    notFound = 3,   ///< There is no such disk or partition; nothing stands on standard output.
};

} // namespace brindle
