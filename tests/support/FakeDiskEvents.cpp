#include "support/FakeDiskEvents.h"

#include <utility>

namespace brindle {

class FakeDiskEvents::Registration : public Observation {
public:
    Registration(std::shared_ptr<Observers> observers, std::shared_ptr<const Observer> observer)
        : m_observers(std::move(observers)),
          m_observer(std::move(observer))
    {
        m_observers->push_back(m_observer);
    }
    ~Registration() override { std::erase(*m_observers, m_observer); }

private:
    std::shared_ptr<Observers> m_observers;
    std::shared_ptr<const Observer> m_observer;
};

FakeDiskEvents::FakeDiskEvents() : m_observers(std::make_shared<Observers>()) {}

void FakeDiskEvents::tellVolume(VolumeChange change, const std::optional<std::string> &path) const
{
    for (const auto &observer : *m_observers) {
        if (observer->which == change)
            observer->volumeChanged(path);
    }
}

void FakeDiskEvents::tellDisk(DiskChange change, const std::optional<DiskDescription> &disk) const
{
    for (const auto &observer : *m_observers) {
        if (observer->diskChanged)
            observer->diskChanged(change, disk);
    }
}

std::unique_ptr<DiskEvents::Observation> FakeDiskEvents::observeVolumes(VolumeChange which, VolumeChanged callback)
{
    return add({.which = which, .volumeChanged = std::move(callback), .diskChanged = {}});
}

std::unique_ptr<DiskEvents::Observation> FakeDiskEvents::createSession(DiskChanged callback)
{
    if (!hasSessions)
        return nullptr;
    return add({.which = std::nullopt, .volumeChanged = {}, .diskChanged = std::move(callback)});
}

std::unique_ptr<DiskEvents::Observation> FakeDiskEvents::add(Observer observer)
{
    return std::make_unique<Registration>(m_observers, std::make_shared<const Observer>(std::move(observer)));
}

} // namespace brindle
