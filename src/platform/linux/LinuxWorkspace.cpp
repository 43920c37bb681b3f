#include "platform/linux/LinuxWorkspace.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>

#include <chrono>

namespace brindle {

namespace {

constexpr std::chrono::seconds kOnceWithin{2};

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
    const Scheduler::Date now = m_clock.date();
    const auto [entry, isFirst] = m_openedAt.try_emplace(path, now);
    if (!isFirst && std::chrono::abs(now - entry->second) < kOnceWithin)
        return;
    entry->second = now;
    startOpener(path);
}

} // namespace brindle
