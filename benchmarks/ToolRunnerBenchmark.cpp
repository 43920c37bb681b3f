// The tool runner over bare posix_spawn + waitid, 500 starts of `true` a round.

#include "Compare.h"

#include "base/BlockOn.h"
#include "platform/linux/LinuxChildProcess.h"
#include "platform/qt/QtScheduler.h"
#include "records/ToolRunner.h"

#include <QCoreApplication>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace brindle {
namespace {

constexpr int kStarts = 500;
constexpr const char *kTool = "/bin/true";

QCoro::Task<> runAll(ToolRunner *tools)
{
    for (int i = 0; i < kStarts; ++i) {
        auto run = tools->run(kTool, {});
        co_await run;
    }
}

void startBare()
{
    std::string path = kTool;
    char *const arguments[] = {path.data(), nullptr};
    for (int i = 0; i < kStarts; ++i) {
        pid_t process = 0;
        if (posix_spawn(&process, kTool, nullptr, nullptr, arguments, environ) != 0)
            std::abort();
        siginfo_t info{};
        waitid(P_PID, static_cast<id_t>(process), &info, WEXITED);
    }
}

} // namespace
} // namespace brindle

int main(int argc, char **argv)
{
    using namespace brindle;
    QCoreApplication application(argc, argv);
    LinuxChildProcessLauncher launcher;
    QtScheduler scheduler;
    ToolRunner tools(launcher, scheduler);
    compare(
        "tool runner, 500 x true", 15, 1.5, [&] { blockOn(runAll(&tools)); }, startBare);
    return verdictStatus();
}
