#pragma once

#include <string>

namespace brindle {

/// Hands files and folders to the desktop. Main thread only.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// The folder of all mounted volumes; on a system that mounts elsewhere it stands for the folder there.
    static constexpr const char *kVolumesFolder = "/Volumes";

    /// Shows the folder at the absolute \a path, or opens the file there with the application that is meant for its
    /// kind. Waits for nothing and reports no failure.
    virtual void openFile(const std::string &path) = 0;
};

} // namespace brindle
