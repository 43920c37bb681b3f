#include "platform/linux/PlistUserDefaults.h"

#include <QFileSystemWatcher>
#include <QMetaMethod>

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <system_error>
#include <tuple>
#include <utility>

namespace brindle {

namespace fs = std::filesystem;

namespace {

std::optional<fs::path> absolutePathIn(const char *variable)
{
    const char *value = std::getenv(variable);
    if (value == nullptr || !fs::path(value).is_absolute())
        return std::nullopt;
    return value;
}

fs::path homeOfPasswordDatabase()
{
    passwd entry{};
    passwd *found = nullptr;
    std::array<char, 16384> buffer;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr)
        return found->pw_dir;
    return "/";
}

fs::path settingsFolder()
{
    if (const std::optional<fs::path> folder = absolutePathIn("XDG_CONFIG_HOME"))
        return *folder;
    const std::optional<fs::path> home = absolutePathIn("HOME");
    return (home ? *home : homeOfPasswordDatabase()) / ".config";
}

} // namespace

PlistUserDefaults::PlistUserDefaults(fs::path file) : m_defaults(std::move(file)) {}

PlistUserDefaults::~PlistUserDefaults()
{
    m_defaults.write();
}

fs::path PlistUserDefaults::defaultPath()
{
    return settingsFolder() / "brindle" / "com.orlane.Brindle.plist";
}

std::optional<PropertyValue> PlistUserDefaults::object(const std::string &key) const
{
    const std::lock_guard guard(m_mutex);
    return m_defaults.object(key);
}

void PlistUserDefaults::set(const std::string &key, PropertyValue value)
{
    change(key, std::move(value));
}

void PlistUserDefaults::remove(const std::string &key)
{
    change(key, std::nullopt);
}

void PlistUserDefaults::change(const std::string &key, std::optional<PropertyValue> value)
{
    {
        const std::lock_guard guard(m_mutex);
        if (!m_defaults.change(key, std::move(value)))
            return;
        if (!std::exchange(m_isWriteDue, true))
            QMetaObject::invokeMethod(this, &PlistUserDefaults::synchronize, Qt::QueuedConnection);
    }
    QMetaObject::invokeMethod(this, [this, key] { Q_EMIT valueChanged(key); });
}

std::optional<Error> PlistUserDefaults::synchronize()
{
    std::optional<Error> failure;
    {
        const std::lock_guard guard(m_mutex);
        m_isWriteDue = false;
        failure = m_defaults.write();
    }
    QMetaObject::invokeMethod(this, &PlistUserDefaults::announceForeignChanges);
    return failure;
}

void PlistUserDefaults::connectNotify(const QMetaMethod &signal)
{
    if (signal == QMetaMethod::fromSignal(&UserDefaults::valueChanged))
        QMetaObject::invokeMethod(this, &PlistUserDefaults::watch);
}

void PlistUserDefaults::watch()
{
    if (m_watcher)
        return;
    m_watcher = std::make_unique<QFileSystemWatcher>();
    connect(m_watcher.get(), &QFileSystemWatcher::directoryChanged, this, &PlistUserDefaults::announceForeignChanges);
    {
        const std::lock_guard guard(m_mutex);
        m_defaults.refresh();
        std::ignore = m_defaults.takeForeignChanges(); // of the time when nobody listened
    }
    announceForeignChanges();
}

void PlistUserDefaults::announceForeignChanges()
{
    if (!m_watcher)
        return;
    std::error_code noFolder;
    MergedDefaults::Keys keys;
    fs::path folder;
    {
        const std::lock_guard guard(m_mutex);
        m_defaults.refresh();
        keys = m_defaults.takeForeignChanges();
        folder = m_defaults.folder();
    }
    if (m_watcher->directories().isEmpty() && fs::is_directory(folder, noFolder)) // the first write may have made it
        m_watcher->addPath(QString::fromStdString(folder.string()));
    for (const std::string &key : keys)
        Q_EMIT valueChanged(key);
}

} // namespace brindle
