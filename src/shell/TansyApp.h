#pragma once

#include "platform/ApplicationHost.h"
#include "platform/BundleInfo.h"
#include "platform/Dialogs.h"
#include "platform/SystemValues.h"
#include "platform/UserDefaults.h"
#include "shell/BundleConstants.h"
#include "shell/LaunchMode.h"

#include <vector>

namespace brindle {

/// The application as a whole: what a process does before anything else, and the menu that stands all the time.
class TansyApp {
public:
    /// What the application works with; all of it outlives the application.
    struct Surroundings {
        const BundleInfo &bundle;
        const SystemValues &system;
        const UserDefaults &defaults;
        Dialogs &dialogs;
        ApplicationHost &application;
    };

    /// Writes the report of the launch to the log and hands the menu to the host.
    explicit TansyApp(const Surroundings &surroundings);

    /// The mode that the user defaults told at the start; a mode that was given as an argument doesn't change it.
    [[nodiscard]] LaunchMode currentLaunchMode() const { return m_currentLaunchMode; }

    /// The menu's groups, without those that have nothing to offer.
    [[nodiscard]] std::vector<MenuGroup> commands();

    /// Shows the name, the versions, the system and the identifier, without waiting for the answer.
    void showAbout();

private:
    Surroundings m_surroundings;
    BundleConstants m_constants;
    LaunchMode m_currentLaunchMode = LaunchMode::menuBar;
};

} // namespace brindle
