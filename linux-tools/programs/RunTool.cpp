#include "command/Command.h"

#include "kernel/KernelInventory.h"
#include "kernel/UDisksModule.h"
#include "kernel/acting/KernelActor.h"
#include "machine/MachineFileActor.h"
#include "machine/MachineFileInventory.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace brindle::tools {
namespace {

/// A reader that has gone is no reason to end what was begun.
void writeAtOnce(const std::string &text)
{
    (void)std::fwrite(text.data(), 1, text.size(), stdout);
    (void)std::fflush(stdout);
}

/// The command over what it belongs to: a machine file or the running kernel.
Answer answerOf(int (*command)(Context &, Arguments), Arguments arguments)
{
    const auto run = [&](InventorySource &source, Actor *actor) {
        Context context{.source = source, .out = {}, .err = {}, .actor = actor, .tell = writeAtOnce};
        const int status = command(context, arguments);
        return Answer{.status = status, .out = std::move(context.out), .err = std::move(context.err)};
    };
    const auto root = MachineFile::findRoot(programPath());
    if (!root) {
        KernelRoots roots;
        roots.systemBus = systemBusAddress();
        KernelCalls calls;
        KernelActor actor(roots, ActorRoots(), calls);
        KernelInventory kernel(std::move(roots));
        return run(kernel, &actor);
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
