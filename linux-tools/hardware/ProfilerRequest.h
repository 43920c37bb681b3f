#pragma once

#include "hardware/HardwareFacts.h"
#include "hardware/HardwareText.h"

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace brindle::tools {

/// A kind of hardware that system_profiler tells of.
struct DataType {
    std::string_view name; ///< "SPHardwareDataType"
    std::string (*text)(const HardwareFacts &facts, DetailLevel detail);
};

/// What a command line asks for.
struct ProfilerRequest {
    std::vector<const DataType *> dataTypes; ///< In the order asked for.
    DetailLevel detail = DetailLevel::full;
    bool wantsHelp = false;
    bool wantsNames = false; ///< The names of the data types.
};

/// A command line that asks for nothing; the text says why.
class ProfilerUsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

[[nodiscard]] std::span<const DataType> dataTypes(); ///< All, in the order in which they are told.

/// Reads the \a arguments behind the program's name: names of data types (none: all), `-detailLevel LEVEL`,
/// `-listDataTypes`, `--help`. Throws ProfilerUsageError.
[[nodiscard]] ProfilerRequest readProfilerRequest(std::span<const char *const> arguments);

/// The texts of the data types, one behind the other.
[[nodiscard]] std::string profilerText(const ProfilerRequest &request, const HardwareFacts &facts);

} // namespace brindle::tools
