#include "kernel/DriveHealth.h"

#include <array>
#include <cstddef>

#include <linux/nvme_ioctl.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>

namespace brindle::tools {
namespace {

struct AtaCommand {
    std::uint8_t command = 0;
    std::uint8_t feature = 0;
    std::uint8_t lbaMiddle = 0;
    std::uint8_t lbaHigh = 0;
};

// ACS-3: CHECK POWER MODE, and SMART RETURN STATUS with the key that all SMART commands carry.
constexpr AtaCommand kCheckPowerMode{.command = 0xE5};
constexpr AtaCommand kSmartReturnStatus{.command = 0xB0, .feature = 0xDA, .lbaMiddle = 0x4F, .lbaHigh = 0xC2};

/// Runs a command without data by ATA PASS-THROUGH (16) (SAT-3) and returns the registers that it left.
std::optional<AtaRegisters> runAtaCommand(int descriptor, const AtaCommand &command)
{
    constexpr std::uint8_t kPassThrough = 0x85;
    constexpr std::uint8_t kNoData = 3 << 1;
    constexpr std::uint8_t kReturnRegisters = 0x20;
    constexpr unsigned kTimeoutMilliseconds = 2000;
    std::array<std::uint8_t, 16> block{kPassThrough,      kNoData, kReturnRegisters, 0, command.feature, 0, 0, 0, 0, 0,
                                       command.lbaMiddle, 0,       command.lbaHigh,  0, command.command, 0};
    SenseData sense{};
    sg_io_hdr_t request{};
    request.interface_id = 'S';
    request.dxfer_direction = SG_DXFER_NONE;
    request.cmd_len = static_cast<unsigned char>(block.size());
    request.cmdp = block.data();
    request.mx_sb_len = static_cast<unsigned char>(sense.size());
    request.sbp = sense.data();
    request.timeout = kTimeoutMilliseconds;
    if (::ioctl(descriptor, SG_IO, &request) != 0)
        return std::nullopt;
    return ataRegisters(sense);
}

} // namespace

std::optional<AtaRegisters> ataRegisters(const SenseData &sense)
{
    // They come back in a sense descriptor "ATA Status Return" (code 9, SAT-3) behind a header of 8 bytes.
    constexpr std::uint8_t kDescriptorSense = 0x72;
    constexpr std::uint8_t kAtaReturn = 9;
    constexpr std::size_t kStart = 8;
    constexpr std::uint8_t kErrorOrFault = 0x21;
    const bool isRefused = (sense[kStart + 13] & kErrorOrFault) != 0;
    if ((sense[0] & 0x7F) != kDescriptorSense || sense[kStart] != kAtaReturn || isRefused)
        return std::nullopt;
    return AtaRegisters{.count = sense[kStart + 5], .lbaMiddle = sense[kStart + 9], .lbaHigh = sense[kStart + 11]};
}

bool isAsleep(const AtaRegisters &afterCheckPowerMode)
{
    constexpr std::uint8_t kLastStandbyMode = 0x01; // 0x00 and 0x01 are standby, all above is spinning.
    return afterCheckPowerMode.count <= kLastStandbyMode;
}

Smart ataHealth(const AtaRegisters &afterSmartReturnStatus)
{
    // A drive that is about to fail answers with another key than the one that it was given.
    const auto &[count, middle, high] = afterSmartReturnStatus;
    if (middle == kSmartReturnStatus.lbaMiddle && high == kSmartReturnStatus.lbaHigh)
        return Smart::verified;
    return middle == 0xF4 && high == 0x2C ? Smart::failing : Smart::notSupported;
}

Smart nvmeHealth(const HealthLog &log)
{
    constexpr std::uint8_t kTemperature = 0x02; // A hot drive is no failing one.
    return (log[0] & ~kTemperature) == 0 ? Smart::verified : Smart::failing;
}

std::optional<bool> isAtaDriveAsleep(int descriptor)
{
    const auto registers = runAtaCommand(descriptor, kCheckPowerMode);
    return registers ? std::optional(isAsleep(*registers)) : std::nullopt;
}

Smart ataHealth(int descriptor)
{
    const auto registers = runAtaCommand(descriptor, kSmartReturnStatus);
    return registers ? ataHealth(*registers) : Smart::notSupported;
}

Smart nvmeHealth(int descriptor)
{
    // NVM Express: Get Log Page (02h), SMART / Health Information (02h), of the whole controller.
    constexpr std::uint8_t kGetLogPage = 0x02;
    constexpr std::uint32_t kHealthLog = 0x02;
    constexpr std::uint32_t kAllNamespaces = 0xFFFFFFFF;
    HealthLog log{};
    nvme_admin_cmd command{};
    command.opcode = kGetLogPage;
    command.nsid = kAllNamespaces;
    command.addr = reinterpret_cast<std::uintptr_t>(log.data());
    command.data_len = static_cast<std::uint32_t>(log.size());
    command.cdw10 = kHealthLog | ((static_cast<std::uint32_t>(log.size() / 4) - 1) << 16);
    return ::ioctl(descriptor, NVME_IOCTL_ADMIN_CMD, &command) == 0 ? nvmeHealth(log) : Smart::notSupported;
}

} // namespace brindle::tools
