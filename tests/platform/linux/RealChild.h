#pragma once

#include "platform/linux/LinuxChildProcess.h"

#include "base/BlockOn.h"
#include "base/Completion.h"
#include "support/Patience.h"

#include <cerrno>
#include <memory>
#include <string>
#include <utility>

#include <sys/wait.h>

namespace brindle {

inline QCoro::Task<ChildProcessEnd> await(Completion<ChildProcessEnd> completion)
{
    co_return co_await completion;
}

/// A child with what became of it.
struct Child {
    Completion<ChildProcessEnd> completion;
    std::unique_ptr<ChildProcess> process;

    explicit Child(ChildProcessCommand command)
    {
        LinuxChildProcessLauncher launcher;
        process = launcher.launch(std::move(command), [completion = completion](ChildProcessEnd end) {
            completion.complete(std::move(end));
        });
    }

    [[nodiscard]] ChildProcessEnd end() const { return blockOn(await(completion), kPatience); }
};

inline ChildProcessCommand shell(std::string script)
{
    return {"/bin/sh", {"-c", std::move(script)}, std::nullopt};
}

inline bool hasChildren()
{
    siginfo_t info{};
    return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0 || errno != ECHILD;
}

} // namespace brindle
