#include "support/FakeNotificationDaemon.h"
#include "support/FakePortal.h"
#include "support/PrivateBus.h"

#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <gmock/gmock.h>

#include <map>
#include <optional>
#include <string>

namespace brindle {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr int kPatience = 110'000; // milliseconds; nothing waits for so long but a failing test

/// The application on a demo machine and a bus of its own, used from its start to its end by somebody built in, with a
/// watch over its main thread.
class MainThreadTest : public testing::Test {
protected:
    void SetUp() override
    {
        if (const std::string obstacle = PrivateBus::obstacle(); !obstacle.empty())
            GTEST_SKIP() << obstacle;
        bus.emplace();
        daemon.emplace();
        portal.emplace(QVariant::fromValue(uint{1}));
    }

    /// What the application prints, and what the watch has found, until it ends.
    std::string run(const QString &forbidden = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char *name : {"HOME", "TMPDIR", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"})
            environment.insert(QLatin1String(name), folder.path());
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        environment.insert(QStringLiteral("QT_NO_GLIB"), QStringLiteral("1")); // one kind of event loop to know
        environment.insert(QStringLiteral("BRINDLE_BACKUP"), folder.filePath(QStringLiteral("backup")));
        if (!forbidden.isEmpty())
            environment.insert(QStringLiteral("BRINDLE_FORBIDDEN"), forbidden);
        QProcess program;
        program.setProcessEnvironment(environment);
        program.setProcessChannelMode(QProcess::MergedChannels);
        QEventLoop loop;
        QObject::connect(&program, &QProcess::finished, &loop, &QEventLoop::quit);
        QTimer::singleShot(kPatience, &loop, &QEventLoop::quit);
        program.start(QStringLiteral(WATCHED_WINDOW), {QStringLiteral("--demo")});
        loop.exec();
        EXPECT_EQ(program.state(), QProcess::NotRunning);
        EXPECT_EQ(program.exitCode(), 0);
        return program.readAll().toStdString();
    }

    QTemporaryDir folder;
    std::optional<PrivateBus> bus;
    std::optional<FakeNotificationDaemon> daemon;
    std::optional<FakePortal> portal;
};

TEST_F(MainThreadTest, NeitherTouchesAMountPointNorWaitsFromTheStartToTheQuit)
{
    const std::string told = run();

    EXPECT_THAT(told, Not(HasSubstr("finding: ")));
    EXPECT_THAT(told, HasSubstr("step: quit\n"));
    EXPECT_THAT(told, HasSubstr("seen: "));
    EXPECT_TRUE(QFile::exists(folder.filePath(QStringLiteral("backup/Microsoft"))));
    EXPECT_FALSE(daemon->shown.empty());
    EXPECT_GT(portal->reads, 0);
}

struct Wrong {
    const char *what;
    const char *finding;
};

class WatchOverTheMainThread : public MainThreadTest, public testing::WithParamInterface<Wrong> {};

INSTANTIATE_TEST_SUITE_P(MainThread, WatchOverTheMainThread,
                         testing::Values(Wrong{"file", "/Volumes/EFI/EFI"}, Wrong{"bus", "QDBusConnection::call"},
                                         Wrong{"child", "QProcess::waitForFinished"}, Wrong{"sleep", "QThread::msleep"},
                                         Wrong{"loop", "QEventLoop::exec"}, Wrong{"thread", "QThread::wait"}),
                         [](const auto &row) { return row.param.what; });

TEST_P(WatchOverTheMainThread, FindsWhatIsForbidden)
{
    const std::string told = run(QString::fromLatin1(GetParam().what));

    const std::size_t finding = told.find("finding: ");
    ASSERT_NE(finding, std::string::npos) << told;
    EXPECT_THAT(told.substr(finding), HasSubstr(GetParam().finding));
}

} // namespace
} // namespace brindle
