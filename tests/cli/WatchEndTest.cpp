#include "cli/WatchEnd.h"

#include "base/BlockOn.h"
#include "privileged/KeychainHelper.h"
#include "state/AutoMountMarks.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/SimulatedMachine.h"
#include "support/WaitUntil.h"

#include <QTimer>

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace brindle {
namespace {

using namespace std::chrono_literals;
using testing::IsEmpty;

/// The end of a watch while the sudo of a mount runs that has begun by itself.
class EndOfAWatch : public testing::Test {
protected:
    EndOfAWatch()
    {
        machine.replaceTool("sudo", fmt::format("#!/bin/sh\necho $$ > '{}'\nexec sleep 600\n", number().string()));
        Platform platform = machine.platform();
        auto manualClock = std::make_unique<ManualClock>();
        clock = manualClock.get();
        platform.scheduler = std::move(manualClock);
        (void)platform.secretStore->add({KeychainHelper::kService, KeychainHelper::kAccount}, Secret("open sesame"));
        assembly.emplace(std::move(platform));

        machine.addDisk("disk0");
        scan();
        machine.addDisk("disk2").withEFI("EFI");
        setAutoMountMarks(assembly->userDefaults(), {{"0E239BC6-F960-3107-89CF-1C97F78BB46B", "Stick"}});
        scan();
        waitUntil([&] { return sudo() > 0; });
    }
    ~EndOfAWatch() override
    {
        endSudo();
        drainEventLoop(); // whoever waits for the mount is told of its end
    }

    /// Ends the watch, during which \a happens. What it says on standard error.
    std::string endWhile(const std::function<void()> &happens)
    {
        QTimer::singleShot(0, QCoreApplication::instance(), happens);
        testing::internal::CaptureStderr();
        endWatch(*assembly, dialogs, *clock);
        return testing::internal::GetCapturedStderr();
    }

    /// Kills sudo and waits until the mount has failed by that; nothing where that was done before.
    void endSudo()
    {
        if (std::exchange(m_hasEndedSudo, true))
            return;
        EXPECT_EQ(::kill(sudo(), SIGKILL), 0);
        waitUntil([&] { return std::ranges::any_of(log.lines(), isOfAFailure); });
    }

    /// Its process; 0 where it hasn't begun.
    [[nodiscard]] pid_t sudo() const
    {
        pid_t process = 0;
        std::ifstream(number()) >> process;
        return process;
    }

    const LogCapture log;
    SimulatedMachine machine;
    ManualClock *clock = nullptr;
    std::optional<Assembly> assembly;
    TerminalDialogs dialogs{-1};

private:
    void scan() { blockOn(assembly->diskManager().startScan(false), kPatience); }

    static bool isOfAFailure(const std::string &line) { return line.starts_with("   🏎️ ❌ Auto-mount failed: "); }

    [[nodiscard]] std::filesystem::path number() const { return machine.root() / "number"; }

    bool m_hasEndedSudo = false;
};

TEST_F(EndOfAWatch, LeavesAMountAloneThatDoesNotEndWithinTenSeconds)
{
    EXPECT_EQ(endWhile([&] { clock->advance(10s); }), "brindlectl: A mount goes on without being watched\n");

    EXPECT_EQ(::kill(sudo(), 0), 0) << "it has ended with the watch";
}

TEST_F(EndOfAWatch, WaitsForAMountUntilThen)
{
    EXPECT_THAT(endWhile([&] {
                    clock->advance(9'999ms);
                    endSudo();
                }),
                IsEmpty());
}

} // namespace
} // namespace brindle
