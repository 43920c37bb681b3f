#include "cli/Command.h"

#include "assembly/DemoMachine.h"
#include "base/Error.h"
#include "cli/Interruption.h"

#include <fmt/format.h>

#include <optional>

namespace brindle {

ExitStatus onMachine(const GlobalOptions &options, const std::function<ExitStatus(Platform)> &run)
{
    if (!options.demo)
        return run(makePlatform(changesOfEnvironment()));
    std::optional<DemoMachine> demo;
    const Interruption interruption([&] { demo.reset(); });
    demo.emplace();
    return run(makePlatform(demo->platformChanges()));
}

void keepSetting(UserDefaults &defaults, const char *key)
{
    if (const std::optional<Error> failure = defaults.synchronize())
        throw Error(failure->domain(), failure->code(),
                    fmt::format("{} can't be kept: {}", key, failure->localizedDescription()));
}

} // namespace brindle
