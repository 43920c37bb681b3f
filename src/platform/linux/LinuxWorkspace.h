#pragma once

#include "platform/Scheduler.h"
#include "platform/Workspace.h"

#include <memory>
#include <string>

namespace brindle {

/// Opens by the desktop's own opener, xdg-open, in a session of its own: what it starts outlives this process. Nothing
/// where the opener is not installed.
class LinuxWorkspace final : public Workspace {
public:
    explicit LinuxWorkspace(const Scheduler &clock); ///< Outlives the workspace.

    /// A folder that was asked for less than two seconds ago is passed over: a mount opens its folder, and so does the
    /// row that asked for the mount. All volumes are in /run/media/USER. All of it is done on another thread, which the
    /// end of the process waits for.
    void openFile(const std::string &path) override;

private:
    class OpenedFolders;

    const Scheduler &m_clock;
    std::shared_ptr<OpenedFolders> m_opened;
};

} // namespace brindle
