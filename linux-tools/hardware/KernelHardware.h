#pragma once

#include "hardware/HardwareFacts.h"

#include <filesystem>

namespace brindle::tools {

/// Reads the hardware of the running machine from the kernel's files, without any privilege; root learns the serial
/// number and the memory modules as well, the modules everybody where udev keeps them.
///
/// What cannot be read stays unknown, and never is an error.
class KernelHardware {
public:
    /// The folders proc, run, sys and usr are looked for in \a root.
    explicit KernelHardware(std::filesystem::path root = "/");

    [[nodiscard]] HardwareFacts read() const;

private:
    void readModel(HardwareFacts &facts) const;
    void readDeviceTree(HardwareFacts &facts) const;
    [[nodiscard]] Processor readProcessor() const;
    [[nodiscard]] Memory readMemory() const;
    [[nodiscard]] std::uint64_t memoryBlockBytes() const;

    std::filesystem::path m_root;
};

} // namespace brindle::tools
