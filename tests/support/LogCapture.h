#pragma once

#include "base/Log.h"

#include <string>
#include <vector>

namespace brindle {

/// Takes the log's lines while it lives, in place of the sink before.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    [[nodiscard]] const std::vector<std::string> &lines() const { return m_lines; }

private:
    std::vector<std::string> m_lines;
    Log::Sink m_before;
};

} // namespace brindle
