#pragma once

#include "hardware/HardwareFacts.h"

#include <string_view>

namespace brindle::tools {

/// The processors that \a cpuInfo, the text of `/proc/cpuinfo`, tells. The speed is the one in the model's own name
/// ("… @ 3.20GHz"): "cpu MHz" is only that of the moment. Of most machines that are no PCs only the cores are told.
[[nodiscard]] Processor readCpuInfo(std::string_view cpuInfo);

/// \a modelName in short: "Intel(R) Core(TM) i7-8700 CPU @ 3.20GHz" is "Intel Core i7-8700".
[[nodiscard]] std::string shortProcessorName(std::string_view modelName);

} // namespace brindle::tools
