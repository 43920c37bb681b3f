#include "command/Command.h"

#include "kernel/KernelInventory.h"
#include "kernel/UDisksModule.h"
#include "machine/MachineFileActor.h"
#include "machine/MachineFileInventory.h"

#include <algorithm>
#include <utility>

namespace brindle::tools {
namespace {

/// The command over what it belongs to: a machine file or the running kernel.
Answer answerOf(int (*command)(Context &, Arguments), Arguments arguments)
{
    const auto run = [&](InventorySource &source, Actor *actor) {
        Context context{.source = source, .out = {}, .err = {}, .actor = actor};
        const int status = command(context, arguments);
        return Answer{.status = status, .out = std::move(context.out), .err = std::move(context.err)};
    };
    const auto root = MachineFile::findRoot(programPath());
    if (!root) {
        KernelRoots roots;
        roots.systemBus = systemBusAddress();
        KernelInventory kernel(std::move(roots));
        return run(kernel, nullptr);
    }
    const MachineFile file(*root);
    MachineFileInventory inventory(file);
    MachineFileActor actor(file, hasSimulatedPrivilege());
    return run(inventory, &actor);
}

} // namespace

int runTool(int (*command)(Context &, Arguments), int count, char **words)
{
    const std::vector<std::string_view> arguments(words + std::min(count, 1), words + count);
    return tellAnswer([&] { return answerOf(command, arguments); });
}

} // namespace brindle::tools
