#pragma once

#include "platform/ApplicationHost.h"
#include "platform/WindowHost.h"
#include "shell/ViewHeightCalculator.h"
#include "state/DiskManager.h"

namespace brindle {

/// Opens the application's window, or brings the one that is there to the front.
class MainWindowOpener {
public:
    static constexpr double kWidth = 500; ///< In points.

    /// What the opener works with; all of it outlives the opener.
    struct Surroundings {
        WindowHost &windows;
        WindowHost::Delegate &windowDelegate;
        ApplicationHost &application;
        const DiskManager &diskManager;
        const ViewHeightCalculator &heightCalculator;
    };

    explicit MainWindowOpener(const Surroundings &surroundings) : m_surroundings(surroundings) {}

    /// The first window that is visible or has content comes to the front; without one a window is made, as high as
    /// the list of disks needs it now.
    void open();

private:
    [[nodiscard]] bool bringToFront();
    [[nodiscard]] double height() const;
    void finishStylingLater(WindowHost::WindowID window);
    void show(WindowHost::WindowID window);

    Surroundings m_surroundings;
};

} // namespace brindle
