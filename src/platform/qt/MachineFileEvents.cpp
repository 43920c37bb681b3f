#include "platform/qt/MachineFileEvents.h"

#include <nlohmann/json.hpp>

#include <QFileSystemWatcher>

#include <fstream>
#include <functional>
#include <map>
#include <utility>

namespace brindle {

namespace fs = std::filesystem;
using Json = nlohmann::json;

namespace {

/// What can come and go in a machine: the name of each disk or mount point, by what tells it from others.
using Things = std::map<std::string, std::string>;
using ReadThings = std::function<Things(const Json &machine)>;

/// The value of \a key; \a fallback where it is missing or of another type.
template <typename T>
T valueOf(const Json &object, const char *key, T fallback)
{
    const auto found = object.is_object() ? object.find(key) : object.end();
    if (found == object.end())
        return fallback;
    const T *value = found->template get_ptr<const T *>();
    return value ? *value : fallback;
}

Things disksOf(const Json &machine)
{
    Things disks;
    for (const Json &disk : valueOf(machine, "disks", Json::array_t())) {
        const std::string identifier = valueOf(disk, "identifier", std::string());
        if (!identifier.empty())
            disks.emplace(identifier, valueOf(disk, "mediaName", std::string()));
    }
    return disks;
}

Things mountsOf(const Json &machine, const fs::path &root)
{
    Things mounts;
    for (const Json &mount : valueOf(machine, "mounts", Json::array_t())) {
        const std::string mountPoint = valueOf(mount, "mountPoint", std::string());
        if (!mountPoint.empty())
            mounts.emplace(valueOf(mount, "carrier", std::string()) + ' ' + mountPoint, (root / mountPoint).string());
    }
    return mounts;
}

/// Tells which things come and go as the machine file is replaced.
class MachineFileObserver : public DiskEvents::Observation {
public:
    using Told = std::function<void(const std::string &name)>;

    MachineFileObserver(fs::path root, ReadThings readThings, Told come, Told gone)
        : m_root(std::move(root)),
          m_readThings(std::move(readThings)),
          m_come(std::move(come)),
          m_gone(std::move(gone))
    {
        m_watcher.addPath(QString::fromStdString(m_root.string()));
        m_things = read();
        QObject::connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_watcher, [this] { compare(); });
    }

private:
    /// As it was last known where the file can't be read.
    [[nodiscard]] Things read() const
    {
        std::ifstream file(m_root / "machine.json");
        const Json machine = Json::parse(file, nullptr, false);
        return machine.is_object() ? m_readThings(machine) : m_things;
    }

    void compare()
    {
        const Things before = std::exchange(m_things, read());
        tellMissing(before, m_things, m_gone);
        tellMissing(m_things, before, m_come);
    }

    static void tellMissing(const Things &things, const Things &others, const Told &told)
    {
        for (const auto &[key, name] : things)
            if (!others.contains(key))
                told(name);
    }

    fs::path m_root;
    ReadThings m_readThings;
    Told m_come;
    Told m_gone;
    Things m_things;
    QFileSystemWatcher m_watcher;
};

} // namespace

MachineFileEvents::MachineFileEvents(fs::path root) : m_root(std::move(root)) {}

std::unique_ptr<DiskEvents::Observation> MachineFileEvents::observeVolumes(VolumeChange which, VolumeChanged callback)
{
    const MachineFileObserver::Told tell = [callback = std::move(callback)](const std::string &path) {
        callback(path);
    };
    const MachineFileObserver::Told pass = [](const std::string &) {};
    const bool isMount = which == VolumeChange::mounted;
    return std::make_unique<MachineFileObserver>(
        m_root, [root = m_root](const Json &machine) { return mountsOf(machine, root); }, isMount ? tell : pass,
        isMount ? pass : tell);
}

std::unique_ptr<DiskEvents::Observation> MachineFileEvents::createSession(DiskChanged callback)
{
    const auto tell = [callback = std::move(callback)](DiskChange change) {
        return [callback, change](const std::string &name) {
            callback(change, DiskDescription{.isWhole = true, .mediaName = name});
        };
    };
    return std::make_unique<MachineFileObserver>(m_root, disksOf, tell(DiskChange::appeared),
                                                 tell(DiskChange::disappeared));
}

} // namespace brindle
