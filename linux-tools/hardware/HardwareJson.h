#pragma once

#include "hardware/HardwareFacts.h"

#include <nlohmann/json_fwd.hpp>

namespace brindle::tools {

class MachineFile;

/// The hardware that a machine file describes, from the value of its key "hardware". The keys are those of
/// HardwareFacts; only the name of a slot or a card must be there. What is not as it should be is a JsonValueError,
/// whose path begins with "hardware".
[[nodiscard]] HardwareFacts hardwareFromJson(const nlohmann::ordered_json &hardware);

/// The hardware of the machine that \a file describes. Without the key "hardware", or where its value or the file is
/// not as it should be, a MachineFileError that names the file, the line and the key.
[[nodiscard]] HardwareFacts readHardware(const MachineFile &file);

} // namespace brindle::tools
