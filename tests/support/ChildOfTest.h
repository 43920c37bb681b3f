#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>

namespace brindle {

/// Ends the idle threads of Qt's pool and waits until the kernel has no other thread of this process any more. A thread
/// that is still on its way out may hold the allocator's locks, and a child would wait for them for ever.
void endOtherThreads();

/// Starts a copy of this process that runs \a body and ends: with 0 where none of its expectations failed, else with 1.
[[nodiscard]] pid_t startChild(const std::function<void()> &body);

/// Waits for the end of \a child: its exit status, or the negative number of the signal that ended it.
int endOf(pid_t child);

/// Takes root's rights over files from the process while it lives, and gives \a folder to whom it is then. Changes
/// nothing for another user.
class WithoutRootsRights {
public:
    explicit WithoutRootsRights(const std::filesystem::path &folder);
    ~WithoutRootsRights();
    WithoutRootsRights(const WithoutRootsRights &) = delete;
    WithoutRootsRights &operator=(const WithoutRootsRights &) = delete;

private:
    bool m_wasRoot;
};

} // namespace brindle
