#include "command/Command.h"

#include "kernel/KernelInventory.h"
#include "kernel/UDisksModule.h"
#include "machine/MachineFileActor.h"
#include "machine/MachineFileInventory.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace brindle::tools {
namespace {

bool write(std::FILE *file, const std::string &text)
{
    return std::fwrite(text.data(), 1, text.size(), file) == text.size() && std::fflush(file) == 0;
}

/// The command over what it belongs to: a machine file or the running kernel.
int runCommand(int (*command)(Context &, Arguments), Arguments arguments, std::string &out, std::string &err)
{
    const auto run = [&](InventorySource &source, Actor *actor) {
        Context context{.source = source, .out = {}, .err = {}, .actor = actor};
        const int status = command(context, arguments);
        out = std::move(context.out);
        err = std::move(context.err);
        return status;
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
    std::string out;
    std::string err;
    int status = kFailed;
    try {
        status = runCommand(command, arguments, out, err);
    } catch (const MachineFileError &error) {
        err = fmt::format("{}\n", error.what());
    }
    const bool isErrorWritten = write(stderr, err);
    return write(stdout, out) && isErrorWritten ? status : kFailed;
}

} // namespace brindle::tools
