#pragma once

#include "platform/ApplicationHost.h"
#include "platform/DelayedCalls.h"
#include "platform/Relauncher.h"
#include "platform/Scheduler.h"
#include "platform/UserDefaults.h"
#include "shell/LaunchMode.h"

namespace brindle {

/// Changes the launch mode, which a process can't: stores the new one, starts a new process and ends this one.
///
/// The two directions differ in their pauses, their arguments and in what a failed start means. The pauses let the new
/// process come up and the settings reach the disk before this process ends. Main thread only.
class LaunchModeSwitch {
public:
    /// What the switch works with; all of it outlives the switch.
    struct Surroundings {
        UserDefaults &defaults;
        Scheduler &scheduler;
        Relauncher &relauncher;
        ApplicationHost &application;
    };

    explicit LaunchModeSwitch(const Surroundings &surroundings);

    /// The new process reads the mode from the settings. This one ends also where the start fails.
    void switchToWindow();

    /// The new process gets the mode as an argument too. Where the start fails, the log tells why and this process goes
    /// on in the window mode.
    void switchToMenuBar();

private:
    void store(LaunchMode mode);
    void terminateAfter(Scheduler::Duration pause);

    Surroundings m_surroundings;
    DelayedCalls m_delayedCalls;
};

} // namespace brindle
