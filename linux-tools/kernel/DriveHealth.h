#pragma once

#include "inventory/Inventory.h"

#include <array>
#include <cstdint>
#include <optional>

namespace brindle::tools {

// What a drive says of itself, asked on an open descriptor of its node. The kernel lets root alone ask.

/// Whether an ATA drive has stopped its motor: reading would start it, asking this doesn't. `nullopt` when it
/// doesn't say.
[[nodiscard]] std::optional<bool> isAtaDriveAsleep(int descriptor);

/// What SMART RETURN STATUS says. The drive must be awake.
[[nodiscard]] Smart ataHealth(int descriptor);

/// What the critical warnings of the health log say.
[[nodiscard]] Smart nvmeHealth(int descriptor);

// How the answers read.

/// The registers that an ATA command left.
struct AtaRegisters {
    std::uint8_t count = 0;
    std::uint8_t lbaMiddle = 0;
    std::uint8_t lbaHigh = 0;
};

using SenseData = std::array<std::uint8_t, 32>;
using HealthLog = std::array<std::uint8_t, 512>;

/// Finds them in the sense data of the SCSI command that carried it; `nullopt` when the drive refused the command.
[[nodiscard]] std::optional<AtaRegisters> ataRegisters(const SenseData &sense);

[[nodiscard]] bool isAsleep(const AtaRegisters &afterCheckPowerMode);
[[nodiscard]] Smart ataHealth(const AtaRegisters &afterSmartReturnStatus);
[[nodiscard]] Smart nvmeHealth(const HealthLog &log);

} // namespace brindle::tools
