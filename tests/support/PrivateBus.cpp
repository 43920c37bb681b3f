#include "support/PrivateBus.h"
#include "support/Patience.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace brindle {

namespace {

constexpr const char *kConfiguration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=%1/bus</listen>
  <policy context="default"><allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/>%2</policy>
</busconfig>
)";

/// One for all buses of this process: libdbus reads the address once and keeps it.
const QTemporaryDir &folder()
{
    static const QTemporaryDir folder;
    return folder;
}

QString configurationPath()
{
    return folder().filePath(QStringLiteral("bus.conf"));
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
    configure({});
    m_daemon.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                                                   QStringLiteral("--config-file=") + configurationPath()});
    EXPECT_TRUE(m_daemon.waitForReadyRead(kPatienceMilliseconds)) << m_daemon.readAllStandardError().toStdString();
}

void PrivateBus::refuse(const char *interface, const char *member)
{
    configure(QStringLiteral("<deny send_interface=\"%1\" send_member=\"%2\"/>")
                  .arg(QLatin1String(interface), QLatin1String(member)));
    QProcess reload;
    reload.start(QStringLiteral("dbus-send"),
                 {QStringLiteral("--session"), QStringLiteral("--print-reply"),
                  QStringLiteral("--dest=org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                  QStringLiteral("org.freedesktop.DBus.ReloadConfig")});
    EXPECT_TRUE(reload.waitForFinished(kPatienceMilliseconds) && reload.exitCode() == 0)
        << reload.readAllStandardError().toStdString();
}

void PrivateBus::configure(const QString &policy)
{
    QFile configuration(configurationPath());
    EXPECT_TRUE(configuration.open(QIODevice::WriteOnly));
    configuration.write(QString::fromLatin1(kConfiguration).arg(folder().path(), policy).toUtf8());
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
    EXPECT_TRUE(m_daemon.waitForFinished(kPatienceMilliseconds));
}

} // namespace brindle
