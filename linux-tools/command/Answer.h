#pragma once

#include <functional>
#include <string>

namespace brindle::tools {

// Exit statuses of the tools.
constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

/// What a tool says, and the status that it ends with.
struct Answer {
    int status = kDone;
    std::string out; ///< For standard output.
    std::string err; ///< For standard error.
};

/// The rest of a main function: writes what \a tell answers and returns the exit status. Whatever it throws, and an
/// output that can't be written, is told on standard error and counts as failed.
[[nodiscard]] int tellAnswer(const std::function<Answer()> &tell);

} // namespace brindle::tools
