#pragma once

#include "assembly/ShellAssembly.h"

#include "base/DefaultsKeys.h"
#include "support/FakeAppearance.h"
#include "support/FakeApplicationHost.h"
#include "support/FakeStatusItemHost.h"
#include "support/FakeWindowHost.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/SimulatedMachine.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace brindle {

/// The real application in the window mode, without its pictures, on a simulated machine.
class ShellFixture : public testing::Test {
protected:
    ~ShellFixture() override { end(); }

    /// What start() is given, before anything of it is replaced.
    Platform platform()
    {
        Platform platform = machine.platform();
        platform.scheduler = replacedBy(clock);
        platform.userDefaults->set(DefaultsKeys::kLaunchMode, "window");
        return platform;
    }

    ShellAssembly &start(Platform platform)
    {
        return m_shell.emplace(
            std::move(platform),
            ShellHosts{
                .application = application, .windows = windows, .statusItem = statusItem, .appearance = appearance},
            std::vector<std::string>{"brindle"});
    }

    void end()
    {
        m_shell.reset();
        drainEventLoop();
    }

    /// The application, which has been started.
    ShellAssembly &startedShell() { return m_shell.value(); }
    [[nodiscard]] bool isStarted() const { return m_shell.has_value(); }

    /// A new fake, owned by what is returned and named by \a place.
    template <typename Fake>
    static std::unique_ptr<Fake> replacedBy(Fake *&place)
    {
        auto fake = std::make_unique<Fake>();
        place = fake.get();
        return fake;
    }

    LogCapture log;
    SimulatedMachine machine;
    std::vector<std::string> journal;
    FakeApplicationHost application{journal};
    FakeWindowHost windows{journal};
    FakeStatusItemHost statusItem;
    FakeAppearance appearance;
    ManualClock *clock = nullptr;

private:
    std::optional<ShellAssembly> m_shell;
};

} // namespace brindle
