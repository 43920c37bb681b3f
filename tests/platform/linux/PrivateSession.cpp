#include "platform/linux/PrivateSession.h"

#include "platform/linux/SecretServiceStore.h"
#include "support/Patience.h"

#include <gtest/gtest.h>

#include <QStandardPaths>

#include <chrono>
#include <thread>

namespace brindle {

namespace {

} // namespace

std::string PrivateSession::obstacle()
{
    for (const char *program : {"gnome-keyring-daemon", "secret-tool"}) {
        if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty())
            return std::string("there is no ") + program;
    }
    return PrivateBus::obstacle();
}

PrivateSession::PrivateSession()
{
    startKeyring();
}

PrivateSession::~PrivateSession()
{
    if (m_keyring.state() != QProcess::NotRunning)
        endKeyring();
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
    ASSERT_TRUE(m_keyring.waitForBytesWritten(kPatienceMilliseconds));
    m_keyring.closeWriteChannel();
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
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
    m_keyring.terminate();
    EXPECT_TRUE(m_keyring.waitForFinished(kPatienceMilliseconds));
}

void PrivateSession::endBus()
{
    m_bus.end();
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
    EXPECT_TRUE(tool.waitForFinished(kPatienceMilliseconds));
    return tool.readAll().toStdString();
}

} // namespace brindle
