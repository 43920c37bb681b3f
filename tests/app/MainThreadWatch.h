#pragma once

#include <string>
#include <vector>

namespace brindle {

/// Notes what the main thread of a program that links this does and must not: file calls on a path below a mount point,
/// synchronous D-Bus calls, and waits for anything but the next event. The functions of the system are put in place by
/// the program's own of the same names, so that those that libraries call are seen too.
class MainThreadWatch {
public:
    /// From now on; a mount point is what lies below a folder named as \a folderOfMountPoints.
    explicit MainThreadWatch(std::string folderOfMountPoints);
    ~MainThreadWatch();
    MainThreadWatch(const MainThreadWatch &) = delete;
    MainThreadWatch &operator=(const MainThreadWatch &) = delete;

    void end(); ///< What is found by then stays found.

    /// A line for each: the function with the path, and the functions that had called it, the innermost first.
    [[nodiscard]] std::vector<std::string> findings() const;

    /// How many file calls of the main thread were looked at, whatever their paths.
    [[nodiscard]] int fileCalls() const;

    /// How often the main thread waited for its next event, as it may.
    [[nodiscard]] int waitsForEvents() const;
};

} // namespace brindle
