#include "platform/linux/LinuxWorkspace.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>

#include <filesystem>

#include <pwd.h>
#include <unistd.h>

#include <chrono>

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

void LinuxWorkspace::openFile(const std::string &path)
{
    const std::string place = path == kVolumesFolder ? folderOfVolumes() : path;
    std::error_code ignored;
    if (!std::filesystem::is_directory(place, ignored) || !wasJustOpened(place))
        startOpener(place);
}

/// Notes that it is opened now unless it was.
bool LinuxWorkspace::wasJustOpened(const std::string &folder)
{
    const Scheduler::Date now = m_clock.date();
    const auto [entry, isFirst] = m_openedAt.try_emplace(folder, now);
    if (!isFirst && std::chrono::abs(now - entry->second) < kOnceWithin)
        return true;
    entry->second = now;
    return false;
}

} // namespace brindle
