#pragma once

#include <functional>
#include <span>
#include <string>

namespace brindle {

/// Shows \a look the writable memory of a running process, as a core image would hold it, one region after the other;
/// what is shown is a copy, which is wiped. \a process is its number, or "self".
void lookAtMemory(const std::string &process, const std::function<void(std::span<const char>)> &look);

} // namespace brindle
