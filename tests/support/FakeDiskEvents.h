#pragma once

#include "platform/DiskEvents.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// Disk events that happen when a test says so, told at once to whoever observes at that moment.
class FakeDiskEvents : public DiskEvents {
public:
    FakeDiskEvents();

    bool hasSessions = true; ///< Whether createSession() succeeds.

    void mount(const std::optional<std::string> &path) const { tellVolume(VolumeChange::mounted, path); }
    void unmount(const std::optional<std::string> &path) const { tellVolume(VolumeChange::unmounted, path); }
    void tellDisk(DiskChange change, const std::optional<DiskDescription> &disk) const;

    /// Observations that have begun and not ended: one a kind of volume event and one a session.
    [[nodiscard]] std::size_t observations() const { return m_observers->size(); }

    [[nodiscard]] std::unique_ptr<Observation> observeVolumes(VolumeChange which, VolumeChanged callback) override;
    [[nodiscard]] std::unique_ptr<Observation> createSession(DiskChanged callback) override;

private:
    struct Observer {
        std::optional<VolumeChange> which;
        VolumeChanged volumeChanged;
        DiskChanged diskChanged;
    };
    using Observers = std::vector<std::shared_ptr<const Observer>>;
    class Registration;

    void tellVolume(VolumeChange change, const std::optional<std::string> &path) const;
    [[nodiscard]] std::unique_ptr<Observation> add(Observer observer);

    std::shared_ptr<Observers> m_observers; ///< A registration may outlive the events.
};

} // namespace brindle
