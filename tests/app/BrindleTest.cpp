#include "support/Patience.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <string>

namespace brindle {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// The program as a process without a screen, with a home and temporary files of its own.
class BrindleTest : public testing::Test {
protected:
    ~BrindleTest() override
    {
        if (process.state() != QProcess::NotRunning)
            process.kill();
        process.waitForFinished(kPatienceMilliseconds);
    }

    void start(const QStringList &arguments)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "WAYLAND_SOCKET", "QT_QPA_PLATFORM"})
            environment.remove(QString::fromLatin1(name));
        if (!platform.isEmpty())
            environment.insert(QStringLiteral("QT_QPA_PLATFORM"), platform);
        environment.insert(QStringLiteral("HOME"), home.path());
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), home.path());
        environment.insert(QStringLiteral("TMPDIR"), temporary.path());
        for (const char *name : {"DBUS_SESSION_BUS_ADDRESS", "XDG_CONFIG_HOME", "BRINDLE_TOOL_ROOT"})
            environment.remove(QString::fromLatin1(name));
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(BRINDLE), arguments);
    }

    void waitForLine(const char *line)
    {
        while (!output.contains(line) && process.waitForReadyRead(kPatienceMilliseconds))
            output += process.readAllStandardOutput();
        ASSERT_THAT(output.toStdString(), HasSubstr(line));
    }

    void waitForEnd() { ASSERT_TRUE(process.waitForFinished(kPatienceMilliseconds)); }

    [[nodiscard]] QStringList demoMachines() const
    {
        return QDir(temporary.path()).entryList({QStringLiteral("brindle-demo-*")}, QDir::Dirs);
    }

    QString platform = QStringLiteral("offscreen"); ///< Where its windows go; empty: nowhere.
    QTemporaryDir home;
    QTemporaryDir temporary;
    QProcess process;
    QByteArray output;
};

TEST_F(BrindleTest, TellsHowItIsCalled)
{
    start({QStringLiteral("--help")});
    waitForEnd();

    EXPECT_EQ(process.exitCode(), 0);
    const std::string help = process.readAllStandardOutput().toStdString();
    EXPECT_THAT(help, StartsWith("Usage: brindle [--demo[=ask]] [-launchMode menubar|window]\n"));
    for (const char *option : {"--demo", "-launchMode MODE", "--help", "--version"})
        EXPECT_THAT(help, HasSubstr(fmt::format("\n  {} ", option)));
}

TEST_F(BrindleTest, RefusesWhatItDoesNotKnow)
{
    start({QStringLiteral("--demon")});
    waitForEnd();

    EXPECT_EQ(process.exitCode(), 2);
    EXPECT_EQ(process.readAllStandardError().toStdString(),
              "brindle: --demon can't be understood; brindle --help tells what can\n");
}

TEST_F(BrindleTest, SaysThatThereIsNoDesktop)
{
    platform.clear();

    start({QStringLiteral("--demo")});
    waitForEnd();

    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_EQ(process.readAllStandardError().toStdString(),
              "brindle: there is no desktop here to show a window on; brindlectl works in a terminal\n");
}

struct SignalCase {
    const char *name;
    int number;
};

class DemoEndedBySignal : public BrindleTest, public testing::WithParamInterface<SignalCase> {};

INSTANTIATE_TEST_SUITE_P(By, DemoEndedBySignal,
                         testing::Values(SignalCase{"SIGTERM", SIGTERM}, SignalCase{"SIGINT", SIGINT},
                                         SignalCase{"SIGHUP", SIGHUP}),
                         [](const auto &row) { return row.param.name; });

TEST_P(DemoEndedBySignal, LeavesNoMachineBehind)
{
    start({QStringLiteral("--demo"), QStringLiteral("-launchMode"), QStringLiteral("window")});
    waitForLine("🚀 Brindle Starting...");
    ASSERT_EQ(demoMachines().size(), 1);

    ASSERT_EQ(::kill(static_cast<pid_t>(process.processId()), GetParam().number), 0);
    waitForEnd();

    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(demoMachines().size(), 0);
}

} // namespace
} // namespace brindle
