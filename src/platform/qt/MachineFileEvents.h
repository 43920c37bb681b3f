#pragma once

#include "platform/DiskEvents.h"

#include <filesystem>

namespace brindle {

/// The events of a simulated machine (docs/machine-file.md): what changes in ROOT/machine.json, disks and mounts.
///
/// Disks are those of its list `disks` that are no images, by number: one that is plugged in again is another. The
/// folder is watched for the file's replacement; a file that is missing or can't be understood tells nothing.
class MachineFileEvents : public DiskEvents {
public:
    explicit MachineFileEvents(std::filesystem::path root);

    [[nodiscard]] std::unique_ptr<Observation> observeVolumes(VolumeChange which, VolumeChanged callback) override;
    [[nodiscard]] std::unique_ptr<Observation> createSession(DiskChanged callback) override;

private:
    std::filesystem::path m_root;
};

} // namespace brindle
