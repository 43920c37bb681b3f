// The log of one scan of the demo machine, line by line.

#include "assembly/Assembly.h"
#include "assembly/DemoMachine.h"
#include "base/BlockOn.h"
#include "base/Text.h"
#include "support/Fixtures.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/Patience.h"

#include <QCoreApplication>
#include <QThreadPool>

#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <string>
#include <utility>

namespace brindle {
namespace {

/// Runs one child after the other, in the order of the launches, so that the lines of disks that are read side by side
/// come in an order that is always the same.
class OneAtATimeLauncher : public ChildProcessLauncher {
public:
    explicit OneAtATimeLauncher(std::unique_ptr<ChildProcessLauncher> real) : m_real(std::move(real)) {}

    std::unique_ptr<ChildProcess> launch(ChildProcessCommand command, Ended ended) override
    {
        m_waiting.emplace_back(std::move(command), std::move(ended));
        if (!m_running)
            startNext();
        return std::make_unique<Child>();
    }

private:
    class Child : public ChildProcess {
    public:
        [[nodiscard]] bool isRunning() const override { return true; }
        void terminate() override {} // whoever is no longer wanted ends by itself
    };

    void startNext()
    {
        m_running.reset();
        if (m_waiting.empty())
            return;
        auto [command, ended] = std::move(m_waiting.front());
        m_waiting.pop_front();
        m_running = m_real->launch(std::move(command), [this, ended = std::move(ended)](ChildProcessEnd end) {
            QThreadPool::globalInstance()->waitForDone(); // a look at files is over before this end is told
            QCoreApplication::sendPostedEvents();
            ended(std::move(end));
            startNext();
        });
    }

    std::unique_ptr<ChildProcessLauncher> m_real;
    std::unique_ptr<ChildProcess> m_running;
    std::deque<std::pair<ChildProcessCommand, Ended>> m_waiting;
};

std::string replacedAll(std::string text, const std::string &what, const std::string &by)
{
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size()))
        text.replace(at, what.size(), by);
    return text;
}

TEST(DemoScan, LogsEachStepAsReviewed)
{
    DemoMachine demo;
    const PlatformChanges changes = demo.platformChanges();
    Platform platform = makePlatform(changes);
    platform.childProcesses = std::make_unique<OneAtATimeLauncher>(std::move(platform.childProcesses));
    platform.scheduler = std::make_unique<ManualClock>();
    std::string log;
    {
        const LogCapture capture;
        Assembly assembly(std::move(platform));
        blockOn(assembly.diskManager().startScan(false), kPatience);
        for (const std::string &line : capture.lines())
            log += replacedAll(line, changes.toolRoot.value(), "DEMO") + '\n';
    }

    expectGolden("demo-scan.log", log);
}

} // namespace
} // namespace brindle
