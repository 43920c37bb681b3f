#include "support/PrivateBus.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace brindle {

namespace {

constexpr int kPatience = 20'000; // milliseconds; nothing waits for so long but a failing test

constexpr const char *kConfiguration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=%1/bus</listen>
  <policy context="default"><allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/></policy>
</busconfig>
)";

/// One for all buses of this process: libdbus reads the address once and keeps it.
const QTemporaryDir &folder()
{
    static const QTemporaryDir folder;
    return folder;
}

} // namespace

std::string PrivateBus::obstacle()
{
    return QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty() ? "there is no dbus-daemon" : "";
}

PrivateBus::PrivateBus() : m_addressBefore(qgetenv("DBUS_SESSION_BUS_ADDRESS"))
{
    start();
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + folder().filePath(QStringLiteral("bus")).toUtf8());
}

void PrivateBus::start()
{
    QFile configuration(folder().filePath(QStringLiteral("bus.conf")));
    EXPECT_TRUE(configuration.open(QIODevice::WriteOnly));
    configuration.write(QString::fromLatin1(kConfiguration).arg(folder().path()).toUtf8());
    configuration.close();
    m_daemon.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                                                   QStringLiteral("--config-file=") + configuration.fileName()});
    EXPECT_TRUE(m_daemon.waitForReadyRead(kPatience)) << m_daemon.readAllStandardError().toStdString();
}

PrivateBus::~PrivateBus()
{
    if (m_daemon.state() != QProcess::NotRunning)
        end();
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_addressBefore);
}

void PrivateBus::end()
{
    m_daemon.terminate();
    EXPECT_TRUE(m_daemon.waitForFinished(kPatience));
}

} // namespace brindle
