#include "platform/linux/LinuxWorkspace.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QThreadPool>

#include <chrono>
#include <filesystem>
#include <map>
#include <mutex>

#include <pwd.h>
#include <unistd.h>

namespace brindle {

namespace {

constexpr std::chrono::seconds kOnceWithin{2};

/// Where removable volumes are mounted for this user; the number stands for a user without a name.
std::string folderOfVolumes()
{
    const passwd *const user = ::getpwuid(::getuid());
    return "/run/media/" + (user ? std::string(user->pw_name) : std::to_string(::getuid()));
}

void startOpener(const std::string &path)
{
    QProcess opener;
    opener.setProgram(QStandardPaths::findExecutable(QStringLiteral("xdg-open")));
    opener.setArguments({QFile::decodeName(path.c_str())});
    opener.setStandardInputFile(QProcess::nullDevice());
    opener.setStandardOutputFile(QProcess::nullDevice()); // a pipe of ours would end what still writes to it later
    opener.setStandardErrorFile(QProcess::nullDevice());
    opener.startDetached();
}

} // namespace

/// When which folder was opened; for any thread.
class LinuxWorkspace::OpenedFolders {
public:
    /// Notes that it is opened at \a now unless it was just before.
    [[nodiscard]] bool wasJustOpened(const std::string &folder, Scheduler::Date now)
    {
        const std::lock_guard lock(m_mutex);
        const auto [entry, isFirst] = m_openedAt.try_emplace(folder, now);
        if (!isFirst && std::chrono::abs(now - entry->second) < kOnceWithin)
            return true;
        entry->second = now;
        return false;
    }

private:
    std::mutex m_mutex;
    std::map<std::string, Scheduler::Date> m_openedAt;
};

LinuxWorkspace::LinuxWorkspace(const Scheduler &clock) : m_clock(clock), m_opened(std::make_shared<OpenedFolders>()) {}

void LinuxWorkspace::openFile(const std::string &path)
{
    QThreadPool::globalInstance()->start([opened = m_opened, now = m_clock.date(), path] {
        const std::string place = path == kVolumesFolder ? folderOfVolumes() : path;
        std::error_code ignored;
        if (!std::filesystem::is_directory(place, ignored) || !opened->wasJustOpened(place, now))
            startOpener(place);
    });
}

} // namespace brindle
