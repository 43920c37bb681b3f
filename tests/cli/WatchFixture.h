#pragma once

#include "cli/BrindlectlFixture.h"
#include "support/Patience.h"

#include <QDeadlineTimer>

#include <nlohmann/json.hpp>

#include <csignal>
#include <functional>
#include <string>
#include <vector>

namespace brindle {

using Identifiers = std::vector<std::string>;

/// `brindlectl watch` as a process that a test follows.
class Watch : public Brindlectl {
protected:
    ~Watch() override
    {
        watch.kill();
        watch.waitForFinished(kPatienceMilliseconds);
    }

    /// The next line of standard output without its newline; empty where none comes.
    std::string nextLine()
    {
        const QDeadlineTimer deadline(kPatienceMilliseconds);
        while (!watch.canReadLine() && watch.state() != QProcess::NotRunning && !deadline.hasExpired())
            watch.waitForReadyRead(100);
        return watch.readLine().trimmed().toStdString();
    }

    /// The identifiers of the next published list.
    Identifiers nextList()
    {
        const nlohmann::json list = nlohmann::json::parse(nextLine());
        Identifiers identifiers;
        for (const nlohmann::json &disk : list.at("disks"))
            identifiers.push_back(disk.at("identifier"));
        return identifiers;
    }

    /// The next published list that fits; an unplugged disk with volumes is told twice.
    Identifiers nextListWhere(const std::function<bool(const Identifiers &)> &fits)
    {
        Identifiers identifiers = nextList();
        while (!fits(identifiers))
            identifiers = nextList();
        return identifiers;
    }

    /// Signals the program; one that has ended has no number, and 0 would be this test's own group.
    void signal(int signalNumber) const
    {
        const auto program = static_cast<pid_t>(watch.processId());
        EXPECT_TRUE(program > 0 && ::kill(program, signalNumber) == 0);
    }

    /// Sends the signal; what the program ended with.
    int end(int signalNumber = SIGTERM)
    {
        signal(signalNumber);
        EXPECT_TRUE(watch.state() == QProcess::NotRunning || watch.waitForFinished(kPatienceMilliseconds));
        EXPECT_EQ(watch.exitStatus(), QProcess::NormalExit);
        return watch.exitCode();
    }

    static std::string brindleMachine(const std::vector<std::string> &arguments)
    {
        QStringList list;
        for (const std::string &argument : arguments)
            list << QString::fromStdString(argument);
        QProcess process;
        process.start(QStringLiteral(BRINDLE_MACHINE), list);
        EXPECT_TRUE(process.waitForFinished(kPatienceMilliseconds));
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
        return process.readAllStandardOutput().trimmed().toStdString();
    }

    QProcess watch;
};

} // namespace brindle
