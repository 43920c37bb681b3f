#pragma once

#include "base/OnWorker.h"

#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

namespace brindle {

/// Whether something lies at \a path; what can't be looked at isn't there. Looked at on another thread, because a
/// device that sleeps or fails takes its time to answer.
inline QCoro::Task<bool> fileExists(std::string path)
{
    return onWorker([path = std::move(path)] {
        std::error_code ignored;
        return std::filesystem::exists(path, ignored);
    });
}

} // namespace brindle
