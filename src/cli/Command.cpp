#include "cli/Command.h"

#include "assembly/DemoMachine.h"
#include "cli/Interruption.h"

#include <optional>

namespace brindle {

ExitStatus onMachine(const GlobalOptions &options, const std::function<ExitStatus(Platform)> &run)
{
    if (!options.demo)
        return run(makePlatform(changesOfEnvironment()));
    std::optional<DemoMachine> demo;
    const Interruption interruption([&] { demo.reset(); });
    demo.emplace(options.demoAsksForPassword ? DemoMachine::Password::missing : DemoMachine::Password::stored);
    return run(makePlatform(demo->platformChanges()));
}

} // namespace brindle
