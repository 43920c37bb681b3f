#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace brindle {

/// Tells when volumes are mounted and unmounted and when disks come and go. Main thread only.
///
/// Callbacks come from the event loop, never inside a function of this class, and tell only what happens after the
/// observation began. Waiting for the next event costs nothing: no polling, no timer. An observation must not be ended
/// inside its own callback.
class DiskEvents {
public:
    enum class VolumeChange { mounted, unmounted };
    enum class DiskChange { appeared, disappeared };

    /// What is known of a disk or partition that came or went; a fact that the system doesn't tell is absent.
    struct DiskDescription {
        std::optional<bool> isWhole;
        std::optional<std::string> mediaName; ///< As `diskutil info` tells it.
    };

    /// Observers and sessions: their end stops the delivery and gives back what it took of the system.
    class Observation {
    public:
        virtual ~Observation() = default;
    };

    /// Gets the volume's mount point, or nothing where the event doesn't tell it.
    using VolumeChanged = std::function<void(std::optional<std::string> path)>;

    /// Gets nothing where the disk can't be described.
    using DiskChanged = std::function<void(DiskChange change, std::optional<DiskDescription> disk)>;

    virtual ~DiskEvents() = default;

    /// Calls \a callback for each volume of a disk that is mounted, or for each that is unmounted.
    [[nodiscard]] virtual std::unique_ptr<Observation> observeVolumes(VolumeChange which, VolumeChanged callback) = 0;

    /// Calls \a callback for each disk, and where the system tells of them each partition, that comes or goes; a new
    /// medium or a new table is a disk that appears. Null where no session can be had.
    [[nodiscard]] virtual std::unique_ptr<Observation> createSession(DiskChanged callback) = 0;
};

} // namespace brindle
