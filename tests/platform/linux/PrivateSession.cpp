#include "platform/linux/PrivateSession.h"

#include "platform/linux/SecretServiceStore.h"

#include <gtest/gtest.h>

#include <QStandardPaths>

#include <chrono>
#include <thread>

namespace brindle {

namespace {

constexpr int kPatience = 20'000; // milliseconds; nothing waits for so long but a failing test

// A bus that starts no service by itself, so that no other keyring and no dialog can come up.
constexpr const char *kBusConfiguration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir=%1</listen>
  <policy context="default"><allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/></policy>
</busconfig>
)";

void end(QProcess &process)
{
    process.terminate();
    EXPECT_TRUE(process.waitForFinished(kPatience));
}

} // namespace

std::string PrivateSession::obstacle()
{
    for (const char *program : {"dbus-daemon", "gnome-keyring-daemon", "secret-tool"}) {
        if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty())
            return std::string("there is no ") + program;
    }
    return {};
}

PrivateSession::PrivateSession() : m_addressBefore(qgetenv("DBUS_SESSION_BUS_ADDRESS"))
{
    startBus();
    startKeyring();
}

PrivateSession::~PrivateSession()
{
    if (m_keyring.state() != QProcess::NotRunning)
        endKeyring();
    if (m_bus.state() != QProcess::NotRunning)
        endBus();
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_addressBefore);
}

void PrivateSession::startBus()
{
    QFile configuration(m_home.filePath(QStringLiteral("bus.conf")));
    ASSERT_TRUE(configuration.open(QIODevice::WriteOnly));
    configuration.write(QString::fromLatin1(kBusConfiguration).arg(m_home.path()).toUtf8());
    configuration.close();
    m_bus.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                                                QStringLiteral("--config-file=") + configuration.fileName()});
    ASSERT_TRUE(m_bus.waitForReadyRead(kPatience)) << m_bus.readAllStandardError().toStdString();
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.readLine().trimmed());
}

void PrivateSession::startKeyring()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
        environment.insert(QLatin1String(name), m_home.path());
    environment.remove(QStringLiteral("DISPLAY"));
    m_keyring.setProcessEnvironment(environment);
    m_keyring.start(QStringLiteral("gnome-keyring-daemon"), {QStringLiteral("--unlock"), QStringLiteral("--foreground"),
                                                             QStringLiteral("--components=secrets")});
    m_keyring.write("password of the keyring");
    ASSERT_TRUE(m_keyring.waitForBytesWritten(kPatience));
    m_keyring.closeWriteChannel();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kPatience);
    while (!SecretServiceStore::isAvailable()) {
        ASSERT_LT(std::chrono::steady_clock::now(), deadline) << m_keyring.readAllStandardError().toStdString();
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

void PrivateSession::lockKeyring()
{
    (void)secretTool({"lock", "--collection=login"});
}

void PrivateSession::endKeyring()
{
    end(m_keyring);
}

void PrivateSession::endBus()
{
    end(m_bus);
}

bool PrivateSession::hasAsked()
{
    m_keyring.waitForReadyRead(0);
    return m_keyring.readAllStandardError().contains("prompt");
}

std::string PrivateSession::secretTool(const std::vector<std::string> &arguments)
{
    QProcess tool;
    QStringList list;
    for (const std::string &argument : arguments)
        list << QString::fromStdString(argument);
    tool.setProcessChannelMode(QProcess::MergedChannels); // attributes go to standard error
    tool.start(QStringLiteral("secret-tool"), list);
    EXPECT_TRUE(tool.waitForFinished(kPatience));
    return tool.readAll().toStdString();
}

} // namespace brindle
